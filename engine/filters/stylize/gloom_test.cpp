// CIGloom, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIGloom, MultipliesWithTheBlur) {
    Picture p = noise(50, 40, 94);
    Picture wide = filled(-20, -20, 90, 80, [&](int x, int y) { return clamped(p, x, y); });
    Picture blurred = trueGaussian(wide, 4);
    Picture expected = filled(0, 0, 50, 40, [&](int x, int y) {
        Pixel out = p.get(x, y), q = blurred.get(x, y);
        for (int c = 0; c < 3; ++c) out[c] *= 0.3 + 0.7 * q[c] / q[3];
        return out;
    });
    Values values{{"inputImage", imageOf(p)}, {"inputRadius", 4.0}, {"inputIntensity", 0.7}};
    EXPECT_LT(error(filter("CIGloom", values), expected), halfStep);
    EXPECT_EQ(filter("CIGloom", values)->extent(), (Rect{0, 0, 50, 40}));
}
