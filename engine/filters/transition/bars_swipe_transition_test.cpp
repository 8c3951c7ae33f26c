// CIBarsSwipeTransition, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIBarsSwipeTransition, SlidesBarsAwayOneAfterTheOther) {
    Picture p = noise(60, 40, 112), q = noise(60, 40, 113);
    auto swiped = [&](double time) {
        return filter("CIBarsSwipeTransition", {{"inputImage", imageOf(p)},
                                                {"inputTargetImage", imageOf(q)},
                                                {"inputAngle", M_PI / 2},
                                                {"inputWidth", 8.0},
                                                {"inputBarOffset", 3.0},
                                                {"inputTime", time}});
    };
    EXPECT_LT(error(swiped(1), q), floatError);
    EXPECT_LT(error(swiped(0), filled(0, 0, 60, 40,
                                      [&](int x, int y) {
                                          Pixel out = p.get(x, y);
                                          for (int c = 0; c < 4; ++c)
                                              out[c] += q.get(x, y)[c] * (1 - p.get(x, y)[3]);
                                          return out;
                                      })),
              floatError);
    // Upwards; the first bar is the one at the right. 8 bars, the last 21 pixels behind: 61 pixels in all.
    double time = 30.5 / 61;
    Picture expected = filled(0, 0, 60, 40, [&](int x, int y) {
        double slid = 30.5 - 3 * std::floor((60 - (x + 0.5)) / 8);
        Pixel above = bilinear(p, x + 0.5, y + 0.5 - slid), out;
        for (int c = 0; c < 4; ++c) out[c] = above[c] + q.get(x, y)[c] * (1 - above[3]);
        return out;
    });
    EXPECT_LT(error(swiped(time), expected), 5e-5);
    setTileSize(16);
    EXPECT_LT(error(swiped(time), expected), 5e-5);
    setTileSize(0);
}
