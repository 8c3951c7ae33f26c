// CIAffineTransform, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIAffineTransform, MovesByWholePixelsExactly) {
    Picture p = noise(20, 20, 10);
    Picture moved = p;
    moved.x0 += 1000000, moved.y0 -= 777777;
    Affine m = Affine::translation(1000000, -777777);
    EXPECT_LT(error(filter("CIAffineTransform", {{"inputImage", imageOf(p)}, {"inputTransform", m}}), moved),
              1e-7);
}
