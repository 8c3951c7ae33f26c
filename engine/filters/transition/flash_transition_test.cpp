// CIFlashTransition, against pixels of Core Image's picture.
#include "picture_samples.h"

using namespace reference;

TEST(CIFlashTransition, IsAsCoreImageDrawsIt) {
    expectSamples("CIFlashTransition", {{"inputTime", 0.8}},
                  {
                      {30, 40, {122, 121, 65, 255}, {3, 2, 0, 255}, {197, 171, 112, 255}},
                      {80, 200, {99, 110, 114, 255}, {130, 132, 129, 255}, {255, 255, 255, 255}},
                      {250, 150, {56, 66, 55, 255}, {237, 205, 156, 255}, {255, 255, 212, 255}},
                      {300, 90, {174, 175, 179, 255}, {252, 214, 113, 255}, {239, 221, 209, 255}},
                      {400, 200, {177, 172, 168, 255}, {138, 144, 144, 255}, {198, 189, 182, 255}},
                      {470, 60, {130, 117, 72, 255}, {6, 5, 1, 255}, {134, 120, 77, 255}},
                      {60, 330, {0, 0, 0, 0}, {88, 94, 106, 255}, {255, 224, 196, 74}},
                      {150, 440, {0, 0, 0, 0}, {62, 73, 91, 255}, {255, 235, 224, 25}},
                      {260, 380, {0, 0, 0, 0}, {85, 92, 102, 255}, {255, 220, 193, 29}},
                      {330, 300, {0, 0, 0, 0}, {120, 121, 126, 255}, {255, 228, 206, 47}},
                      {480, 400, {0, 0, 0, 0}, {62, 74, 96, 255}, {0, 0, 0, 0}},
                  });
}

TEST(CIFlashTransition, CoversThePictureAndFadesToTheOther) {
    Picture p = noise(60, 40, 62), q = noise(60, 40, 63, true);
    auto at = [&](double time, double threshold) {
        return filter("CIFlashTransition", {{"inputImage", imageOf(p)},
                                            {"inputTargetImage", imageOf(q)},
                                            {"inputCenter", Numbers{30, 20}},
                                            {"inputExtent", Numbers{0, 0, 60, 40}},
                                            {"inputFadeThreshold", threshold},
                                            {"inputColor", Color{1, 1, 1, 1}},
                                            {"inputMaxStriationRadius", 100.0},
                                            {"inputTime", time}});
    };
    EXPECT_LT(error(at(0, 0.6), p), floatError);
    EXPECT_LT(error(at(1, 0.6), q), floatError);
    EXPECT_LT(error(at(1, 1), q), floatError);
    // When it begins to fade, the light reaches the corners; half of the rest later it is half of it.
    EXPECT_LT(error(at(0.6, 0.6), filled(0, 0, 60, 40, [](int, int) { return Pixel{1, 1, 1, 1}; })), 1e-5);
    EXPECT_LT(error(at(0.8, 0.6), filled(0, 0, 60, 40,
                                         [&](int x, int y) {
                                             Pixel out = q.get(x, y);
                                             for (double& v : out) v = (1 + v) / 2;
                                             return out;
                                         })),
              1e-5);
    expectSameInTiles(at(0.4, 0.6), 0, 0, 60, 40, floatError);
}
