// CITwirlDistortion, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CITwirlDistortion, TurnsTheInsideOfACircle) {
    Picture p = noise(60, 60, 14);
    Picture expected = filled(-5, -5, 70, 70, [&](int x, int y) {
        double dx = x + 0.5 - 30, dy = y + 0.5 - 28, d = std::hypot(dx, dy), t = std::max(0.0, 1 - d / 25);
        double turn = -2 * t * t;
        return bilinear(p, 30 + dx * std::cos(turn) - dy * std::sin(turn),
                        28 + dx * std::sin(turn) + dy * std::cos(turn));
    });
    Image image = filter("CITwirlDistortion", {{"inputImage", imageOf(p)},
                                               {"inputCenter", Numbers{30, 28}},
                                               {"inputRadius", 25.0},
                                               {"inputAngle", 2.0}});
    EXPECT_LT(error(image, expected), 1e-4); // a turn's float error times the steepest edge
}
