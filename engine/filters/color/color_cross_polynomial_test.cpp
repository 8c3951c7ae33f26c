// CIColorCrossPolynomial, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIColorCrossPolynomial, IsQuadraticInAllComponents) {
    Picture p = noise(37, 11, 32);
    const Numbers red{0.5, 0, 0.2, 0.1, 0, 0, 0.3, 0, 0, 0}, green{0, 0.4, 0, 0, 0.2, 0, 0, 0.3, 0, 0.1};
    const Numbers blue{0.1, 0.1, 0.1, 0, 0, 0.5, 0, 0, 0.4, 0.05};
    auto sum = [](const Numbers& k, const Pixel& q) {
        double r = q[0], g = q[1], b = q[2], terms[] = {r, g, b, r * r, g * g, b * b, r * g, g * b, b * r, 1},
               out = 0;
        for (int i = 0; i < 10; ++i) out += k[i] * terms[i];
        return out;
    };
    Picture expected = mapped(p, [&](Pixel q) -> Pixel {
        return {sum(red, q), sum(green, q), sum(blue, q), q[3]};
    });
    Values values{{"inputImage", imageOf(p)},
                  {"inputRedCoefficients", red},
                  {"inputGreenCoefficients", green},
                  {"inputBlueCoefficients", blue}};
    EXPECT_LT(error(filter("CIColorCrossPolynomial", values), expected), floatError);
    EXPECT_LT(error(filter("CIColorCrossPolynomial", {{"inputImage", imageOf(p)}}), p), floatError);
}
