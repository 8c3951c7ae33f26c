// sRGB's curves as filters, against the reference's.
#include "reference.h"

using namespace reference;

TEST(CISRGBToneCurveToLinear, DecodesColors) {
    Picture p = noise(37, 11, 1);
    Picture expected = mapped(p, [](Pixel q) {
        return Pixel{linear(q[0]), linear(q[1]), linear(q[2]), q[3]};
    });
    EXPECT_LT(error(filter("CISRGBToneCurveToLinear", {{"inputImage", imageOf(p)}}), expected), floatError);
}

TEST(CILinearToSRGBToneCurve, CodesColors) {
    Picture p = noise(37, 11, 2);
    Picture expected = mapped(p, [](Pixel q) { return Pixel{coded(q[0]), coded(q[1]), coded(q[2]), q[3]}; });
    EXPECT_LT(error(filter("CILinearToSRGBToneCurve", {{"inputImage", imageOf(p)}}), expected), floatError);
}
