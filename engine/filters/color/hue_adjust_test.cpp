// CIHueAdjust, against what Core Image's pictures fit.
#include "reference.h"

using namespace reference;

namespace {

Image turned(const Image& image, double angle) {
    return filter("CIHueAdjust", {{"inputImage", image}, {"inputAngle", angle}});
}

} // namespace

TEST(CIHueAdjust, TurnsRedTowardsYellow) {
    Image red = crop(constant({1, 0, 0, 1}), {0, 0, 1, 1});
    Pixel quarter = rendered(turned(red, M_PI / 2), 0, 0, 1, 1).at(0, 0);
    // The matrix of hueRotate(90deg).
    EXPECT_NEAR(quarter[0], 0, floatError);
    EXPECT_NEAR(quarter[1], 0.356, floatError);
    EXPECT_NEAR(quarter[2], -0.574, floatError);
    Pixel half = rendered(turned(red, M_PI), 0, 0, 1, 1).at(0, 0);
    EXPECT_NEAR(half[0], 2 * 0.213 - 1, floatError);
    EXPECT_NEAR(half[1], 2 * 0.213, floatError);
}

TEST(CIHueAdjust, TurnsThereAndBackAndKeepsGrayAndLuminance) {
    Picture p = noise(37, 11, 6);
    // The published matrix has three digits.
    EXPECT_LT(error(turned(turned(imageOf(p), 1.1), -1.1), p), 2e-3);
    Picture gray = mapped(p, [](Pixel q) -> Pixel { return {q[0], q[0], q[0], q[3]}; });
    EXPECT_LT(error(turned(imageOf(gray), 2), gray), floatError);
    Picture got = rendered(turned(imageOf(p), 2), 0, 0, 37, 11);
    for (int y = 0; y < 11; ++y)
        for (int x = 0; x < 37; ++x)
            EXPECT_NEAR(luminance(got.get(x, y)), luminance(p.get(x, y)), 2e-3) << x << ' ' << y;
}
