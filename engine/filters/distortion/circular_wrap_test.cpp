// CICircularWrap, against a reference in double precision.
#include "distorted.h"

using namespace reference;

TEST(CICircularWrap, LiesOnACircle) {
    Picture p = noise(60, 20, 83);
    Image image = distorted("CICircularWrap", p, {{"inputRadius", 16.0}, {"inputAngle", 0.6}});
    Picture expected = comesFrom(p, [](Point q) {
        // Turned back, the middle of the picture is at the top.
        Point t{q.x * std::cos(0.6) + q.y * std::sin(0.6), q.y * std::cos(0.6) - q.x * std::sin(0.6)};
        return Point{30 + 16 * std::atan2(t.x, t.y) - centre.x, std::hypot(t.x, t.y) - 16 - centre.y};
    });
    EXPECT_LT(error(image, expected), distortionError);
    EXPECT_LT(tileError(image), distortionError);
}
