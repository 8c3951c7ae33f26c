// CIBloom, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIBloom, ScreensWithTheBlur) {
    Picture p = noise(50, 40, 93);
    Picture blurred = trueGaussian(p, 4);
    Picture expected = filled(-8, -8, 66, 56, [&](int x, int y) {
        Pixel out = p.get(x, y);
        for (int c = 0; c < 4; ++c) out[c] += 0.7 * (1 - (1 - out[c]) * (1 - blurred.get(x, y)[c]) - out[c]);
        return out;
    });
    Values values{{"inputImage", imageOf(p)}, {"inputRadius", 4.0}, {"inputIntensity", 0.7}};
    EXPECT_LT(error(filter("CIBloom", values), expected), halfStep);
    EXPECT_EQ(filter("CIBloom", values)->extent(), (Rect{-12, -12, 62, 52}));
}
