// CIVortexDistortion, against a reference in double precision.
#include "distorted.h"

using namespace reference;

TEST(CIVortexDistortion, TurnsTheMiddleMost) {
    Picture p = noise(60, 60, 84);
    Image image = distorted("CIVortexDistortion", p, {{"inputRadius", 24.0}, {"inputAngle", 7.0}});
    Picture expected = comesFrom(p, [](Point q) {
        double turn = -7 * std::pow(std::max(0.0, 1 - std::hypot(q.x, q.y) / 24), 4);
        return Point{q.x * std::cos(turn) - q.y * std::sin(turn),
                     q.x * std::sin(turn) + q.y * std::cos(turn)};
    });
    EXPECT_LT(error(image, expected), distortionError);
}
