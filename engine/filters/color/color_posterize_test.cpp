// CIColorPosterize, against pixels of Core Image's picture.
#include "picture_samples.h"

using namespace reference;

TEST(CIColorPosterize, LeavesEvenStepsOfLight) {
    expectColors({{121, 290, {251, 204, 28}, {255, 199, 0}},
                  {122, 47, {127, 24, 15}, {106, 0, 0}},
                  {544, 7, {79, 133, 35}, {106, 146, 0}},
                  {32, 24, {225, 27, 18}, {220, 0, 0}},
                  {119, 331, {206, 45, 53}, {199, 0, 0}},
                  {330, 351, {235, 51, 27}, {238, 0, 0}},
                  {164, 436, {249, 84, 30}, {255, 106, 0}}},
                 [](const Image& image) {
                     return filter("CIColorPosterize", {{"inputImage", image}, {"inputLevels", 8.0}});
                 });
}

TEST(CIColorPosterize, StepsStraightColour) {
    Picture p = filled(0, 0, 1, 1, [](int, int) { return Pixel{0.3, 0.1, 0.24, 0.5}; });
    Picture got =
        rendered(filter("CIColorPosterize", {{"inputImage", imageOf(p)}, {"inputLevels", 3.0}}), 0, 0, 1, 1);
    EXPECT_NEAR(got.get(0, 0)[0], 0.25, floatError);
    EXPECT_NEAR(got.get(0, 0)[1], 0, floatError);
    EXPECT_NEAR(got.get(0, 0)[2], 0.25, floatError);
    EXPECT_NEAR(got.get(0, 0)[3], 0.5, floatError);
}
