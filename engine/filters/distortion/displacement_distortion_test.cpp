// CIDisplacementDistortion, against a reference in double precision.
#include "distorted.h"

using namespace reference;

TEST(CIDisplacementDistortion, MovesByRedAndGreen) {
    Picture p = noise(60, 60, 86), map = noise(40, 50, 87);
    Image image = distorted("CIDisplacementDistortion", p,
                            {{"inputDisplacementImage", imageOf(map)}, {"inputScale", 9.0}});
    Picture expected = filled(-40, -40, 140, 140, [&](int x, int y) {
        Pixel m = map.get(x, y);
        return bilinear(p, x + 0.5 + 9 * (m[0] - m[3] / 2), y + 0.5 + 9 * (m[1] - m[3] / 2));
    });
    EXPECT_LT(error(image, expected), distortionError);
    EXPECT_LT(tileError(image), distortionError);
    // Without a map the picture stays as it is.
    EXPECT_LT(error(distorted("CIDisplacementDistortion", p, {}), p), floatError);
}
