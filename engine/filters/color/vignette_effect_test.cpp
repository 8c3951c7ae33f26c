// CIVignetteEffect, against pixels of Core Image's picture.
#include "picture_samples.h"

using namespace reference;

TEST(CIVignetteEffect, FadesAroundACircle) {
    expectColors({{121, 290, {251, 204, 28}, {208, 169, 21}},
                  {146, 298, {255, 221, 0}, {221, 191, 0}},
                  {256, 248, {254, 221, 2}, {234, 204, 2}},
                  {382, 20, {255, 75, 52}, {102, 24, 14}},
                  {164, 436, {249, 84, 30}, {104, 30, 6}},
                  {60, 205, {255, 240, 4}, {173, 163, 2}},
                  {55, 160, {255, 194, 11}, {154, 116, 4}},
                  {281, 461, {254, 98, 57}, {102, 34, 17}}},
                 [](const Image& image) {
                     return filter("CIVignetteEffect", {{"inputImage", image},
                                                        {"inputCenter", Numbers{191.4, 223.3}},
                                                        {"inputRadius", 127.6},
                                                        {"inputIntensity", 0.6}});
                 });
}

TEST(CIVignetteEffect, FalloffIsTheWidthOfTheRise) {
    auto lightAt = [](double falloff, int x) {
        Image image =
            filter("CIVignetteEffect", {{"inputImage", crop(constant({1, 1, 1, 1}), {0, 0, 200, 1})},
                                        {"inputCenter", Numbers{0, 0.5}},
                                        {"inputRadius", 50.0},
                                        {"inputFalloff", falloff}});
        return rendered(image, x, 0, 1, 1).at(x, 0)[0];
    };
    EXPECT_NEAR(lightAt(0, 48), 1, floatError);
    EXPECT_NEAR(lightAt(0, 52), 0, floatError);
    EXPECT_NEAR(lightAt(0.25, 24), 1, floatError);
    EXPECT_NEAR(lightAt(0.25, 75), 0, floatError);
    EXPECT_GT(lightAt(1, 120), 0.001);
    EXPECT_NEAR(lightAt(1, 150), 0, floatError);
}
