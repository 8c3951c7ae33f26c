// CIAffineClamp, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIAffineClamp, ContinuesTheEdge) {
    Picture p = noise(20, 16, 40);
    Picture expected = filled(-30, -20, 90, 70, [&](int x, int y) {
        return readAt(p, (x + 0.5 - 7) / 2.5, (y + 0.5 + 3) / 2.5, Wrap::clamp, Interpolation::linear);
    });
    Values values{{"inputImage", imageOf(p)}, {"inputTransform", Affine{2.5, 0, 0, 2.5, 7, -3}}};
    EXPECT_LT(error(filter("CIAffineClamp", values), expected), floatError);
    EXPECT_EQ(filter("CIAffineClamp", values)->extent(), Rect::infinite());
}
