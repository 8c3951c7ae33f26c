// CICopyMachineTransition, against pixels of Core Image's picture.
#include "picture_samples.h"

using namespace reference;

TEST(CICopyMachineTransition, IsAsCoreImageDrawsIt) {
    expectSamples("CICopyMachineTransition", {{"inputTime", 0.5}},
                  {
                      {20, 100, {89, 97, 60, 255}, {10, 7, 2, 255}, {10, 7, 2, 255}},
                      {150, 100, {130, 124, 72, 255}, {119, 115, 104, 255}, {119, 115, 104, 255}},
                      {220, 100, {58, 60, 46, 255}, {216, 172, 97, 255}, {255, 238, 177, 255}},
                      {260, 50, {198, 189, 194, 255}, {4, 3, 0, 255}, {255, 255, 255, 255}},
                      {340, 120, {164, 162, 167, 255}, {210, 176, 130, 255}, {255, 255, 255, 255}},
                      {370, 40, {175, 173, 186, 255}, {1, 1, 0, 255}, {255, 255, 255, 255}},
                      {400, 200, {177, 172, 168, 255}, {138, 144, 144, 255}, {177, 172, 168, 255}},
                      {250, 300, {0, 0, 0, 0}, {112, 121, 128, 255}, {190, 231, 216, 255}},
                      {350, 400, {0, 0, 0, 0}, {74, 87, 103, 255}, {255, 255, 255, 255}},
                  });
}

TEST(CICopyMachineTransition, IsDoneBeforeItsTime) {
    Picture p = noise(60, 40, 110), q = noise(60, 40, 111);
    auto at = [&](double time, double angle) {
        return filter("CICopyMachineTransition", {{"inputImage", imageOf(p)},
                                                  {"inputTargetImage", imageOf(q)},
                                                  {"inputExtent", Numbers{0, 0, 60, 40}},
                                                  {"inputWidth", 20.0},
                                                  {"inputAngle", angle},
                                                  {"inputTime", time}});
    };
    for (double angle : {0.0, 1.0}) {
        EXPECT_LT(error(at(0, angle), p), floatError);
        EXPECT_LT(error(at(0.65, angle), q), 5 * floatError);
        EXPECT_LT(error(at(1, angle), q), floatError);
        EXPECT_EQ(at(0.4, angle)->extent(), (Rect{0, 0, 60, 40}));
        expectSameInTiles(at(0.4, angle), 0, 0, 60, 40, floatError);
    }
}
