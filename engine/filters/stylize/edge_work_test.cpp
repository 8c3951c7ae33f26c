// CIEdgeWork, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIEdgeWork, IsBlackWhereItIsDarkerThanAround) {
    Picture p = noise(50, 40, 98, true);
    Picture wide = filled(-25, -25, 100, 90, [&](int x, int y) { return clamped(p, x, y); });
    Picture close = trueGaussian(wide, 1), far = trueGaussian(wide, 3);
    Picture expected = filled(0, 0, 50, 40, [&](int x, int y) {
        double ratio = (luminance(close.get(x, y)) + 1e-3) / (luminance(far.get(x, y)) + 1e-3);
        double v = std::clamp(1 + 12 * (ratio - 0.97), 0.0, 1.0);
        return Pixel{v, v, v, 1};
    });
    // The engine's Gaussians end where they are small, and their ratio is taken twelvefold.
    EXPECT_LT(error(filter("CIEdgeWork", {{"inputImage", imageOf(p)}}), expected), 12 * halfStep);
    Image flat = crop(constant({0.5, 0.2, 0.1, 1}), {0, 0, 20, 20});
    for (const Pixel& q : rendered(filter("CIEdgeWork", {{"inputImage", flat}}), 0, 0, 20, 20).pixels)
        for (double v : q) EXPECT_NEAR(v, 1, 1e-5);
}
