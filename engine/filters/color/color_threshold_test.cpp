// CIColorThreshold, against its definition.
#include "reference.h"

using namespace reference;

TEST(CIColorThreshold, MakesComponentsFullOrNothing) {
    Picture p = noise(37, 11, 1);
    Picture expected = mapped(p, [](Pixel q) {
        return Pixel{double(q[0] > 0.3), double(q[1] > 0.3), double(q[2] > 0.3), q[3]};
    });
    EXPECT_LT(
        error(filter("CIColorThreshold", {{"inputImage", imageOf(p)}, {"inputThreshold", 0.3}}), expected),
        floatError);
}
