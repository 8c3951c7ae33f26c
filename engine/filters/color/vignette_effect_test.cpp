// CIVignetteEffect, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIVignetteEffect, FadesOutsideOfACircle) {
    Picture p = noise(70, 60, 100);
    Picture expected = filled(0, 0, 70, 60, [&](int x, int y) {
        Pixel q = p.get(x, y);
        double t = std::clamp((std::hypot(x + 0.5 - 30, y + 0.5 - 22) - 20) / (0.8 * 10), 0.0, 1.0);
        for (int c = 0; c < 3; ++c) q[c] *= 1 - 0.7 * t * t * (3 - 2 * t);
        return q;
    });
    Values values{{"inputImage", imageOf(p)},
                  {"inputCenter", Numbers{30, 22}},
                  {"inputRadius", 20.0},
                  {"inputFalloff", 0.8},
                  {"inputIntensity", 0.7}};
    EXPECT_LT(error(filter("CIVignetteEffect", values), expected), floatError);
}
