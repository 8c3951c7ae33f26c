// CIColorPolynomial, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIColorPolynomial, IsCubicInEachComponent) {
    Picture p = noise(37, 11, 31);
    auto cubic = [](const Numbers& k, double x) { return k[0] + k[1] * x + k[2] * x * x + k[3] * x * x * x; };
    const Numbers red{0.1, 0.5, -0.3, 0.7}, green{0, 0, 1, 0}, blue{0.9, -0.9, 0, 0.2}, alpha{0, 0.5, 0, 0.4};
    Picture expected = mapped(p, [&](Pixel q) -> Pixel {
        return {cubic(red, q[0]), cubic(green, q[1]), cubic(blue, q[2]), cubic(alpha, q[3])};
    });
    Values values{{"inputImage", imageOf(p)},
                  {"inputRedCoefficients", red},
                  {"inputGreenCoefficients", green},
                  {"inputBlueCoefficients", blue},
                  {"inputAlphaCoefficients", alpha}};
    EXPECT_LT(error(filter("CIColorPolynomial", values), expected), floatError);
    EXPECT_LT(error(filter("CIColorPolynomial", {{"inputImage", imageOf(p)}}), p), floatError);
}
