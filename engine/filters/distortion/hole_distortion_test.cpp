// CIHoleDistortion, against a reference in double precision.
#include "distorted.h"

using namespace reference;

TEST(CIHoleDistortion, PushesOutwards) {
    Picture p = noise(60, 60, 82);
    Image image = distorted("CIHoleDistortion", p, {{"inputRadius", 11.0}});
    Picture expected = comesFrom(p, [](Point q) {
        double d = std::hypot(q.x, q.y), f = d > 11 ? 1 - 121 / (d * d) : 0;
        return Point{q.x * f, q.y * f};
    });
    for (int y = -40; y < 100; ++y)
        for (int x = -40; x < 100; ++x)
            for (double& v : expected.at(x, y))
                v *= std::clamp(std::hypot(x + 0.5 - centre.x, y + 0.5 - centre.y) - 10.5, 0.0, 1.0);
    EXPECT_LT(error(image, expected), distortionError);
    EXPECT_LT(tileError(image), distortionError);
}
