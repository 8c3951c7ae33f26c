// CIGammaAdjust, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIGammaAdjust, IsAPower) {
    Picture p = noise(37, 11, 2);
    Picture expected = mapped(p, [](Pixel q) -> Pixel {
        return {std::pow(q[0], 0.75), std::pow(q[1], 0.75), std::pow(q[2], 0.75), q[3]};
    });
    EXPECT_LT(error(filter("CIGammaAdjust", {{"inputImage", imageOf(p)}, {"inputPower", 0.75}}), expected),
              floatError);
}
