// CIBumpDistortionLinear, against a reference in double precision.
#include "distorted.h"

using namespace reference;

TEST(CIBumpDistortionLinear, MovesAlongALine) {
    Picture p = noise(60, 60, 80);
    for (double scale : {0.7, -0.9}) {
        Image image = distorted("CIBumpDistortionLinear", p,
                                {{"inputRadius", 19.0}, {"inputAngle", 0.5}, {"inputScale", scale}});
        Picture expected = comesFrom(p, [&](Point q) {
            double d = q.y * std::cos(0.5) - q.x * std::sin(0.5);
            double move = scale * smoothstep(1 - std::abs(d) / 19) * d;
            return Point{q.x + move * std::sin(0.5), q.y - move * std::cos(0.5)};
        });
        for (int y = -40; y < 100; ++y)
            for (int x = -40; x < 100; ++x)
                if (!p.has(x, y)) expected.at(x, y) = {};
        EXPECT_LT(error(image, expected), distortionError);
        EXPECT_LT(tileError(image), distortionError);
        EXPECT_EQ(image->extent(), (Rect{0, 0, 60, 60}));
    }
}
