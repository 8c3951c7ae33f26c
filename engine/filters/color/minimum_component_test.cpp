// CIMinimumComponent, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIMinimumComponent, IsGray) {
    Picture p = noise(31, 9, 38);
    Picture expected = mapped(p, [](Pixel q) -> Pixel {
        double v = std::min({q[0], q[1], q[2]});
        return {v, v, v, q[3]};
    });
    EXPECT_LT(error(filter("CIMinimumComponent", {{"inputImage", imageOf(p)}}), expected), floatError);
}
