// CIPageCurlTransition, by its geometry.
#include "picture_samples.h"

using namespace reference;

namespace {

Pixel at(const Image& image, int x, int y) { return rendered(image, x, y, 1, 1).get(x, y); }

} // namespace

TEST(CIPageCurlTransition, GoesFromOnePictureToTheOther) {
    Picture p = noise(60, 40, 66, true), q = noise(60, 40, 67, true);
    for (double angle : {0.0, 2.0, -1.0}) {
        auto at = [&](double time) {
            return filter("CIPageCurlTransition", {{"inputImage", imageOf(p)},
                                                   {"inputTargetImage", imageOf(q)},
                                                   {"inputExtent", Numbers{0, 0, 60, 40}},
                                                   {"inputRadius", 10.0},
                                                   {"inputAngle", angle},
                                                   {"inputTime", time}});
        };
        EXPECT_LT(error(at(0), p), floatError);
        EXPECT_LT(error(at(0.0001), p), 0.02) << angle; // nothing jumps
        EXPECT_LT(error(at(1), q), floatError);
        EXPECT_LT(error(at(0.9999), q), 0.02) << angle;
        EXPECT_EQ(at(0.5)->extent(), (Rect{0, 0, 60, 40}));
        expectSameInTiles(at(0.5), 0, 0, 60, 40, 1e-4);
    }
}

TEST(CIPageCurlTransition, RollsAsFarAsCoreImageDoes) {
    // Core Image's pictures show the back mirrored in p . (cos 3, sin 3) = -275, a quarter of the
    // circumference from where the page leaves the ground; the outline is the radius from there.
    Image image =
        filter("CIPageCurlTransition", {{"inputImage", crop(constant({0, 0, 1, 1}), {0, 0, 500, 800})},
                                        {"inputTargetImage", crop(constant({1, 0, 0, 1}), {0, 0, 500, 800})},
                                        {"inputExtent", Numbers{0, 0, 500, 800}},
                                        {"inputRadius", 400.0},
                                        {"inputAngle", 3.0},
                                        {"inputTime", 0.826}});
    double outline = -275 + 400 * M_PI / 2 - 400;
    double x = (outline - 400.5 * std::sin(3.0)) / std::cos(3.0);
    EXPECT_EQ(at(image, int(x) + 6, 400)[2], 0);
    EXPECT_EQ(at(image, int(x) - 6, 400)[2], 1);
}

TEST(CIPageCurlTransition, ShowsTheBackMirroredAndTheFrontBent) {
    // Red is how far to the right a pixel of the page lies, blue tells the back from the front.
    auto ramp = [](double blue) {
        return imageOf(filled(0, 0, 300, 8, [=](int x, int) { return Pixel{(x + 0.5) / 300, 0, blue, 1}; }));
    };
    Image image =
        filter("CIPageCurlTransition", {{"inputImage", ramp(0)},
                                        {"inputTargetImage", crop(constant({0, 1, 0, 1}), {0, 0, 300, 8})},
                                        {"inputBacksideImage", ramp(1)},
                                        {"inputExtent", Numbers{0, 0, 300, 8}},
                                        {"inputRadius", 20.0},
                                        {"inputTime", 0.5}});
    Picture row = rendered(image, 0, 4, 300, 1);
    int outline = 0;
    while (row.get(outline, 4)[1] > 0.5) ++outline;
    // The page leaves the ground here and goes half around the cylinder, so that its back is above, and its
    // end as far from there as is left of it.
    double leaves = outline + 20, end = leaves + (leaves - 20 * M_PI);
    for (int x = int(leaves) + 2; x < 298; ++x) {
        Pixel p = row.get(x, 4);
        bool back = x + 0.5 < end;
        if (std::abs(x + 0.5 - end) < 3) continue;
        EXPECT_EQ(p[2] > 0.5, back) << x;
        EXPECT_NEAR(300 * p[0], back ? leaves - (20 * M_PI + x + 0.5 - leaves) : x + 0.5, 1.5) << x;
    }
    EXPECT_LT(end, 290);
    // On the cylinder's upper half the page is bent: half a radius behind, an arc of asin 1/2 from the top.
    double there = 300 * bilinear(row, leaves - 10, 4.5)[0];
    EXPECT_NEAR(there, leaves - 20 * (M_PI - std::asin(0.5)), 1.5);
}

TEST(CIPageCurlTransition, IsLitByTheShadingImage) {
    Picture ball = filled(0, 0, 41, 41, [](int x, int) { return Pixel{x / 40., x / 40., x / 40., 1}; });
    auto curled = [&](const Image& shading) {
        return filter("CIPageCurlTransition", {{"inputImage", crop(constant({1, 1, 1, 1}), {0, 0, 300, 8})},
                                               {"inputShadingImage", shading},
                                               {"inputExtent", Numbers{0, 0, 300, 8}},
                                               {"inputRadius", 40.0},
                                               {"inputTime", 0.5}});
    };
    Picture row = rendered(curled(imageOf(ball)), 0, 4, 300, 1),
            plain = rendered(curled(nullptr), 0, 4, 300, 1);
    int outline = 0;
    while (plain.get(outline, 4)[3] < 0.5) ++outline;
    EXPECT_NEAR(row.get(outline + 1, 4)[0], 0, 0.05);     // tilted to the left
    EXPECT_NEAR(row.get(outline + 20, 4)[0], 0.25, 0.03); // half as much
    EXPECT_NEAR(row.get(outline + 60, 4)[0], 0.5, 0.01);  // level
    EXPECT_EQ(row.get(outline - 3, 4)[3], 0);
    EXPECT_EQ(plain.get(outline + 20, 4)[0], 1);
}
