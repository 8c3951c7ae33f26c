// CIBumpDistortionLinear, against a reference in double precision.
#include "distorted.h"

using namespace reference;

TEST(CIBumpDistortionLinear, MovesAlongALine) {
    Picture p = noise(60, 60, 80);
    for (double scale : {0.7, -0.9}) {
        Image image = distorted("CIBumpDistortionLinear", p,
                                {{"inputRadius", 19.0}, {"inputAngle", 0.5}, {"inputScale", scale}});
        Picture expected = comesFrom(p, [&](Point q) {
            double d = q.y * std::cos(0.5) - q.x * std::sin(0.5), inside = std::max(0.0, 1 - d * d / 361);
            double move = scale * inside * inside * d;
            return Point{q.x + move * std::sin(0.5), q.y - move * std::cos(0.5)};
        });
        EXPECT_LT(error(image, expected), distortionError);
        EXPECT_LT(tileError(image), distortionError);
    }
}
