// CIRippleTransition, against a reference in double precision.
#include "picture_samples.h"

using namespace reference;

namespace {

double smooth(double t) {
    t = std::clamp(t, 0.0, 1.0);
    return t * t * (3 - 2 * t);
}

} // namespace

TEST(CIRippleTransition, RunsAWaveOverThePictures) {
    Picture p = noise(60, 40, 64), q = noise(60, 40, 65);
    auto at = [&](double time, double scale) {
        return filter("CIRippleTransition", {{"inputImage", imageOf(p)},
                                             {"inputTargetImage", imageOf(q)},
                                             {"inputCenter", Numbers{20, 15}},
                                             {"inputExtent", Numbers{0, 0, 60, 40}},
                                             {"inputWidth", 12.0},
                                             {"inputScale", scale},
                                             {"inputTime", time}});
    };
    EXPECT_LT(error(at(0, 9), p), floatError);
    EXPECT_LT(error(at(1, 9), q), floatError);
    EXPECT_EQ(at(0.5, 9)->extent(), (Rect{0, 0, 60, 40}));
    // Three widths of nine pixels run to the corner at (60, 40), which is farthest.
    double back = 0.6 * (std::hypot(40, 25) + 27) - 27;
    Picture expected = filled(0, 0, 60, 40, [&](int x, int y) {
        double dx = x + 0.5 - 20, dy = y + 0.5 - 15, r = std::hypot(dx, dy), t = (r - back) / 9;
        double slope = smooth(t) - 2 * smooth(t - 1) + smooth(t - 2), image = smooth(t - 1);
        double fromX = x + 0.5 + 9 * slope * dx / r, fromY = y + 0.5 + 9 * slope * dy / r;
        Pixel one = bilinear(p, fromX, fromY), other = bilinear(q, fromX, fromY), out;
        for (int c = 0; c < 4; ++c) out[c] = image * one[c] + (1 - image) * other[c];
        return out;
    });
    EXPECT_LT(error(at(0.6, 9), expected), 1e-4);
    expectSameInTiles(at(0.6, 9), 0, 0, 60, 40, 1e-4);
}

TEST(CIRippleTransition, IsLitByTheShadingImage) {
    // Red grows to the right, green upwards; where the wave is flat its middle is seen.
    Picture shading = filled(10, 20, 41, 41, [](int x, int y) {
        return Pixel{(x - 10) / 40., (y - 20) / 40., 0, 1};
    });
    Image image =
        filter("CIRippleTransition", {{"inputImage", crop(constant({0, 0, 0, 1}), {0, 0, 300, 300})},
                                      {"inputShadingImage", imageOf(shading)},
                                      {"inputTime", 0.5}});
    EXPECT_EQ(image->extent(), (Rect{0, 0, 300, 300}));
    Pixel flat = rendered(image, 150, 150, 1, 1).get(150, 150);
    EXPECT_NEAR(flat[0], 0.5, 0.01);
    EXPECT_NEAR(flat[1], 0.5, 0.01);
    double most = 0, least = 1, behind = 0, before = 0;
    for (int x = 150; x < 300; ++x) {
        Pixel p = rendered(image, x, 150, 1, 1).get(x, 150);
        EXPECT_NEAR(p[1], 0.5, 0.02) << x; // no slope across the direction
        if (p[0] > most) most = p[0], behind = x;
        if (p[0] < least) least = p[0], before = x;
    }
    // The back of the wave is tilted outwards, its front inwards, both to the rim.
    EXPECT_GT(most, 0.98);
    EXPECT_LT(least, 0.02);
    EXPECT_NEAR(before - behind, 75, 2);
}
