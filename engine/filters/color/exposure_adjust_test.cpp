// CIExposureAdjust, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIExposureAdjust, DoublesLightPerStep) {
    Picture p = noise(37, 11, 1);
    Picture expected = mapped(p, [](Pixel q) -> Pixel {
        double f = std::pow(2, 0.7);
        return {q[0] * f, q[1] * f, q[2] * f, q[3]};
    });
    EXPECT_LT(error(filter("CIExposureAdjust", {{"inputImage", imageOf(p)}, {"inputEV", 0.7}}), expected),
              floatError);
}
