// CIVortexDistortion, against a reference in double precision.
#include "distorted.h"

using namespace reference;

TEST(CIVortexDistortion, TurnsTheMiddleMost) {
    Picture p = noise(60, 60, 84);
    Image image = distorted("CIVortexDistortion", p, {{"inputRadius", 24.0}, {"inputAngle", 70.0}});
    Picture expected = comesFrom(p, [](Point q) {
        double d = std::hypot(q.x, q.y),
               turn = -70 * std::pow(std::max(0.0, 1 - d / 24), 2) / std::max(d, 0.5);
        return Point{q.x * std::cos(turn) - q.y * std::sin(turn),
                     q.x * std::sin(turn) + q.y * std::cos(turn)};
    });
    EXPECT_LT(error(image, expected), distortionError);
}
