// CIPinchDistortion, against a reference in double precision.
#include "distorted.h"

using namespace reference;

TEST(CIPinchDistortion, DrawsTheInsideOfACircleTogether) {
    Picture p = noise(60, 60, 43);
    Image image = distorted("CIPinchDistortion", p, {{"inputRadius", 21.0}, {"inputScale", 0.9}});
    EXPECT_LT(error(image, comesFrom(p, [](Point q) { return bumped(q, 21, -0.9); })), floatError);
    EXPECT_LT(tileError(image), floatError);
}
