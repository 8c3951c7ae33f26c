// CIUnsharpMask, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIUnsharpMask, AddsTheDifferenceFromABlur) {
    Picture p = noise(40, 30, 37);
    double sigma = 2, k = 0.8;
    Picture around = filled(-10, -10, 60, 50,
                            [&](int x, int y) { return p.get(std::clamp(x, 0, 39), std::clamp(y, 0, 29)); });
    Picture blurred = trueGaussian(around, sigma);
    Picture expected = filled(0, 0, 40, 30, [&](int x, int y) {
        Pixel out;
        for (int c = 0; c < 4; ++c) out[c] = p.get(x, y)[c] + k * (p.get(x, y)[c] - blurred.get(x, y)[c]);
        return out;
    });
    Values values{{"inputImage", imageOf(p)}, {"inputRadius", sigma}, {"inputIntensity", k}};
    EXPECT_LT(error(filter("CIUnsharpMask", values), expected), halfStep);
    Picture plain = filled(0, 0, 20, 20, [](int, int) { return Pixel{0.5, 0.25, 0, 1}; });
    EXPECT_LT(error(filter("CIUnsharpMask", {{"inputImage", imageOf(plain)}}), plain), floatError);
}
