// CIMaskToAlpha, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIMaskToAlpha, IsAsOpaqueAsThePictureIsBright) {
    Picture p = noise(37, 11, 33);
    Picture expected = filled(0, 0, 37, 11, [&](int x, int y) {
        double a = luminance(p.get(x, y));
        return Pixel{a, a, a, a};
    });
    EXPECT_LT(error(filter("CIMaskToAlpha", {{"inputImage", imageOf(p)}}), expected), floatError);
}
