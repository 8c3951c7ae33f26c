// CIColorInvert, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIColorInvert, IsOneMinusTheColour) {
    Picture p = noise(37, 11, 3);
    Picture expected = mapped(p, [](Pixel q) -> Pixel { return {1 - q[0], 1 - q[1], 1 - q[2], q[3]}; });
    EXPECT_LT(error(filter("CIColorInvert", {{"inputImage", imageOf(p)}}), expected), floatError);
}
