// CIColorMatrix, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIColorMatrix, MultipliesStraightColour) {
    Picture p = noise(37, 11, 7);
    double m[4][4] = {{0.5, 0.2, 0.1, 0.1}, {-0.3, 1.1, 0, 0}, {0, 0.4, 0.6, -0.2}, {0.1, 0, 0.2, 0.6}};
    double bias[4] = {0.05, -0.1, 0.2, 0.1};
    Picture expected = mapped(p, [&](Pixel q) {
        Pixel out;
        for (int i = 0; i < 4; ++i) {
            out[i] = bias[i];
            for (int k = 0; k < 4; ++k) out[i] += m[i][k] * q[k];
        }
        return out;
    });
    auto row = [&](int i) { return Numbers(m[i], m[i] + 4); };
    Image image = filter("CIColorMatrix", {{"inputImage", imageOf(p)},
                                           {"inputRVector", row(0)},
                                           {"inputGVector", row(1)},
                                           {"inputBVector", row(2)},
                                           {"inputAVector", row(3)},
                                           {"inputBiasVector", Numbers(bias, bias + 4)}});
    EXPECT_LT(error(image, expected), floatError);
    // Alpha's bias does not make the world outside of the image opaque.
    EXPECT_EQ(rendered(image, -3, -3, 3, 3).get(-1, -1), Pixel{});
}
