// CIPageCurlWithShadowTransition: what its shadow does.
#include "picture_samples.h"

using namespace reference;

namespace {

Image curled(double time, Values more = {}) {
    Values values{{"inputImage", crop(constant({1, 1, 1, 1}), {0, 0, 300, 60})},
                  {"inputTargetImage", crop(constant({0.5, 1, 1, 1}), {0, 0, 300, 60})},
                  {"inputRadius", 30.0},
                  {"inputTime", time}};
    values.merge(more);
    return filter("CIPageCurlWithShadowTransition", values);
}

} // namespace

TEST(CIPageCurlWithShadowTransition, GoesFromOnePictureToTheOther) {
    Picture p = noise(60, 40, 68), q = noise(60, 40, 69);
    for (double time : {0.0, 1.0}) {
        Image image =
            filter("CIPageCurlWithShadowTransition",
                   {{"inputImage", imageOf(p)}, {"inputTargetImage", imageOf(q)}, {"inputTime", time}});
        EXPECT_LT(error(image, time == 0 ? p : q), floatError);
    }
    EXPECT_EQ(curled(0.5)->extent(), (Rect{0, 0, 300, 60}));
}

TEST(CIPageCurlWithShadowTransition, DarkensWhatLiesBesideTheCurl) {
    Picture with = rendered(curled(0.5), 0, 0, 300, 60),
            without = rendered(curled(0.5, {{"inputShadowAmount", 0.0}}), 0, 0, 300, 60);
    // The page is brighter in red than the target.
    int outline = 0;
    while (without.get(outline, 30)[0] < 0.5) ++outline;
    EXPECT_LT(with.get(outline - 3, 30)[1], 0.85);
    EXPECT_LT(with.get(outline - 3, 30)[1], with.get(outline - 10, 30)[1]);
    EXPECT_NEAR(with.get(2, 30)[1], 1, 1e-3);
    EXPECT_EQ(with.get(outline + 5, 30)[1], 1); // the curl itself is lit
    EXPECT_EQ(with.get(outline - 3, 30)[3], 1);
    // Where it may fall can be limited.
    Picture limited = rendered(curled(0.5, {{"inputShadowExtent", Numbers{0, 0, 300, 20}}}), 0, 0, 300, 60);
    EXPECT_EQ(limited.get(outline - 3, 40)[1], 1);
    EXPECT_LT(limited.get(outline - 3, 10)[1], 0.85);
    expectSameInTiles(curled(0.5), 0, 0, 300, 60, 2e-3);
}
