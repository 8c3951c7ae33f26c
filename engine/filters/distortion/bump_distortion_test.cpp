// CIBumpDistortion, against a reference in double precision.
#include "distorted.h"

using namespace reference;

TEST(CIBumpDistortion, RaisesAndPressesTheInsideOfACircle) {
    Picture p = noise(60, 60, 43);
    for (double scale : {0.6, -0.8}) {
        Image image = distorted("CIBumpDistortion", p, {{"inputRadius", 21.0}, {"inputScale", scale}});
        EXPECT_LT(error(image, comesFrom(p, [=](Point q) { return bumped(q, 21, scale); })), floatError)
            << scale;
        EXPECT_LT(tileError(image), floatError) << scale;
    }
}
