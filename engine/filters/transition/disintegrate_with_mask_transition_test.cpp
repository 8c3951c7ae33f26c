// CIDisintegrateWithMaskTransition, against pixels of Core Image's picture.
#include "picture_samples.h"

using namespace reference;

namespace {

/// Of a mask of two brightnesses, which change at y = 0.
Image maskOf(int above, int below) {
    return imageOf(filled(-40, -40, 80, 80, [=](int, int y) {
        double v = linear((y >= 0 ? above : below) / 255.);
        return Pixel{v, v, v, 1};
    }));
}

} // namespace

TEST(CIDisintegrateWithMaskTransition, IsAsCoreImageDrawsIt) {
    struct Seen {
        int y, above, below;
        Bytes4 image, target, result;
    };
    const Seen samples[] = {
        // What is left and what comes out, outside of the shadow and in it.
        {9, 255, 160, {89, 97, 108, 255}, {176, 8, 8, 255}, {94, 103, 114, 255}},
        {9, 160, 255, {88, 94, 106, 255}, {188, 16, 14, 255}, {177, 14, 12, 255}},
        {-5, 255, 160, {90, 97, 107, 255}, {164, 12, 9, 255}, {95, 4, 3, 255}},
        {-5, 255, 160, {105, 112, 122, 255}, {229, 39, 17, 255}, {134, 18, 6, 255}},
        {-5, 255, 160, {146, 142, 131, 255}, {255, 76, 25, 255}, {150, 41, 10, 255}},
        // The soft edge.
        {0, 160, 255, {89, 95, 107, 255}, {186, 15, 7, 255}, {136, 54, 60, 255}},
        {0, 160, 255, {85, 91, 103, 255}, {184, 12, 8, 255}, {134, 51, 58, 255}},
        {0, 160, 255, {89, 95, 107, 255}, {202, 29, 31, 255}, {147, 57, 64, 255}},
    };
    for (const Seen& seen : samples)
        expectPixel(
            filter("CIDisintegrateWithMaskTransition", {{"inputImage", constantOf(seen.image)},
                                                        {"inputTargetImage", constantOf(seen.target)},
                                                        {"inputMaskImage", maskOf(seen.above, seen.below)},
                                                        {"inputTime", 0.5}}),
            5, seen.y, seen.result);
}

TEST(CIDisintegrateWithMaskTransition, FollowsTheMask) {
    Picture p = noise(40, 30, 114), q = noise(40, 30, 115), mask = noise(40, 30, 116, true);
    auto at = [&](double time) {
        return filter("CIDisintegrateWithMaskTransition", {{"inputImage", imageOf(p)},
                                                           {"inputTargetImage", imageOf(q)},
                                                           {"inputMaskImage", imageOf(mask)},
                                                           {"inputShadowDensity", 0.0},
                                                           {"inputTime", time}});
    };
    EXPECT_LT(error(at(0), p), floatError);
    // Dark goes first.
    Image image = filter("CIDisintegrateWithMaskTransition", {{"inputImage", constant({1, 0, 0, 1})},
                                                              {"inputTargetImage", constant({0, 1, 0, 1})},
                                                              {"inputMaskImage", imageOf(mask)},
                                                              {"inputTime", 0.4}});
    for (int x = 1; x < 39; ++x)
        for (int y = 1; y < 29; ++y) {
            double light = luminance(mask.get(x, y)), red = rendered(image, x, y, 1, 1).get(x, y)[0];
            EXPECT_EQ(red > 0.5 * 1.1, light > 0.4) << x << ' ' << y;
        }
    expectSameInTiles(at(0.4), 0, 0, 40, 30, floatError);
}

TEST(CIDisintegrateWithMaskTransition, EndsWithTheTarget) {
    Picture target = noise(40, 30, 117);
    Image image =
        filter("CIDisintegrateWithMaskTransition", {{"inputImage", imageOf(noise(40, 30, 118, true))},
                                                    {"inputTargetImage", imageOf(target)},
                                                    {"inputMaskImage", constant({1, 1, 1, 1})},
                                                    {"inputTime", 1.0}});
    EXPECT_LT(error(image, target), floatError);
}
