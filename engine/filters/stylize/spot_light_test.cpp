// CISpotLight, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CISpotLight, FallsOffFromItsAxis) {
    Picture p = noise(61, 43, 96);
    const double from[] = {50, 60, 40}, to[] = {20, 15, 0};
    for (double concentration : {0.1, 1.2}) {
        Picture expected = mapped(p, [](Pixel q) { return q; });
        for (int y = 0; y < 43; ++y)
            for (int x = 0; x < 61; ++x) {
                double ray[] = {x + 0.5 - from[0], y + 0.5 - from[1], -from[2]}, dot = 0;
                for (int k = 0; k < 3; ++k) dot += ray[k] * (to[k] - from[k]);
                dot /= std::hypot(ray[0], ray[1], ray[2]) *
                       std::hypot(to[0] - from[0], to[1] - from[1], to[2] - from[2]);
                double lit = 2 * std::pow(std::max(dot, 0.0), 1 / concentration);
                const double color[] = {1, linear(0.8), linear(0.4)};
                for (int c = 0; c < 3; ++c) expected.at(x, y)[c] *= lit * color[c];
            }
        Values values{{"inputImage", imageOf(p)},
                      {"inputLightPosition", Numbers{50, 60, 40}},
                      {"inputLightPointsAt", Numbers{20, 15, 0}},
                      {"inputBrightness", 2.0},
                      {"inputConcentration", concentration},
                      {"inputColor", Color{1, 0.8, 0.4, 1}}};
        EXPECT_LT(error(filter("CISpotLight", values), expected), 5 * floatError) << concentration;
    }
}
