// CIHighlightShadowAdjust, against a reference in double precision.
#include "reference.h"

using namespace reference;

namespace {

/// Straight colour made darker or brighter.
Pixel times(const Pixel& q, double f) { return {q[0] * f, q[1] * f, q[2] * f, q[3]}; }

} // namespace

TEST(CIHighlightShadowAdjust, FollowsTheSurroundings) {
    Picture p = noise(70, 50, 34);
    for (double radius : {0.0, 3.0}) {
        Picture guide = radius > 0 ? trueGaussian(p, radius) : p;
        Picture expected = filled(0, 0, 70, 50, [&](int x, int y) {
            Pixel g = guide.get(x, y);
            double l = g[3] > 0 ? coded(std::min(luminance(g) / g[3], 1.0)) : 0;
            return times(p.get(x, y), std::exp2(2 * 0.8 * std::pow(1 - l, 3) - 1.2 * 0.6 * l * l));
        });
        Values values{{"inputImage", imageOf(p)},
                      {"inputRadius", radius},
                      {"inputShadowAmount", 0.8},
                      {"inputHighlightAmount", 0.4}};
        Image image = filter("CIHighlightShadowAdjust", values);
        EXPECT_EQ(image->extent(), (Rect{0, 0, 70, 50}));
        // The engine's Gaussian ends where it is small.
        EXPECT_LT(error(image, expected), radius > 0 ? halfStep : 1e-4) << radius;
    }
}

TEST(CIHighlightShadowAdjust, KeepsTheOrderOfBrightness) {
    Picture ramp = filled(0, 0, 500, 1, [](int x, int) {
        double v = linear(x / 499.);
        return Pixel{v, v, v, 1};
    });
    for (double shadow : {-1.0, 0.0, 1.0})
        for (double highlight : {0.0, 0.3, 1.0}) {
            Values values{{"inputImage", imageOf(ramp)},
                          {"inputShadowAmount", shadow},
                          {"inputHighlightAmount", highlight}};
            Picture got = rendered(filter("CIHighlightShadowAdjust", values), 0, 0, 500, 1);
            for (int x = 1; x < 500; ++x)
                ASSERT_GT(got.get(x, 0)[0], got.get(x - 1, 0)[0]) << shadow << ' ' << highlight << ' ' << x;
        }
}

TEST(CIHighlightShadowAdjust, StandardLeavesThePicture) {
    Image image = imageOf(noise(8, 8, 33));
    EXPECT_EQ(filter("CIHighlightShadowAdjust", {{"inputImage", image}}), image);
}
