// CIBlendWithMask and CIBlendWithAlphaMask, against a reference in double precision.
#include "reference.h"

using namespace reference;

namespace {

/// Mixes two pictures of different extents by a mask whose amount at a pixel is `amount`.
void expectMixed(const char* name, const std::function<double(const Pixel&)>& amount) {
    Picture image = noise(40, 30, 39), background = noise(50, 20, 40), mask = noise(30, 40, 41);
    background.x0 = -10;
    mask.x0 = 5;
    Picture expected = filled(-15, -5, 65, 50, [&](int x, int y) {
        Pixel a = image.get(x, y), b = background.get(x, y), m = mask.get(x, y), out;
        double t = amount(m);
        for (int c = 0; c < 4; ++c) out[c] = t * a[c] + (1 - t) * b[c];
        return out;
    });
    Values values{{"inputImage", imageOf(image)},
                  {"inputBackgroundImage", imageOf(background)},
                  {"inputMaskImage", imageOf(mask)}};
    Image result = filter(name, values);
    EXPECT_EQ(result->extent(), (Rect{-10, 0, 40, 30}));
    EXPECT_LT(error(result, expected), floatError);
}

} // namespace

TEST(CIBlendWithMask, MixesByTheLightOfTheMask) { expectMixed("CIBlendWithMask", luminance); }

TEST(CIBlendWithMask, ReadsOnlyWhatIsWanted) {
    Image endless = filter("CIBlendWithMask", {{"inputImage", constant({1, 0, 0, 1})},
                                               {"inputBackgroundImage", constant({0, 0, 1, 1})},
                                               {"inputMaskImage", filter("CILinearGradient", {})}});
    EXPECT_TRUE(endless->extent().isInfinite());
    Pixel q = rendered(endless, 100, 99, 1, 1).get(100, 99);
    EXPECT_NEAR(q[0], 0.5, 0.01);
    EXPECT_NEAR(q[2], 0.5, 0.01);
    EXPECT_EQ(planSummary(endless).passes, 1);
}

TEST(CIBlendWithAlphaMask, MixesByTheAlphaOfTheMask) {
    expectMixed("CIBlendWithAlphaMask", [](const Pixel& m) { return m[3]; });
}

TEST(CIBlendWithAlphaMask, TakesAMissingPictureAsClear) {
    Picture p = noise(20, 20, 42);
    Image image = imageOf(p), half = constant({1, 1, 1, 0.5});
    Picture faded = filled(0, 0, 20, 20, [&](int x, int y) {
        Pixel q = p.get(x, y);
        for (double& v : q) v *= 0.5;
        return q;
    });
    auto masked = [&](Values values) { return filter("CIBlendWithAlphaMask", values); };
    EXPECT_LT(error(masked({{"inputImage", image}, {"inputMaskImage", half}}), faded), floatError);
    EXPECT_LT(error(masked({{"inputBackgroundImage", image}, {"inputMaskImage", half}}), faded), floatError);
    EXPECT_EQ(masked({{"inputImage", image}, {"inputBackgroundImage", image}}), nullptr) << "no mask";
    EXPECT_EQ(masked({{"inputMaskImage", half}}), nullptr) << "no picture";
}
