// Ways from one picture to another, against references in double precision.
#include "reference.h"

using namespace reference;

TEST(Transitions, CopyMachinesTurnUnderTheLight) {
    Picture p = noise(60, 40, 110), q = noise(60, 40, 111);
    Color green{0.6, 1, 0.8, 1};
    for (double time : {0.0, 0.3, 0.7, 1.0}) {
        Image image = filter("CICopyMachineTransition", {{"inputImage", imageOf(p)},
                                                         {"inputTargetImage", imageOf(q)},
                                                         {"inputExtent", Numbers{0, 0, 60, 40}},
                                                         {"inputColor", green},
                                                         {"inputWidth", 20.0},
                                                         {"inputAngle", 0.0},
                                                         {"inputTime", time}});
        Picture expected = filled(0, 0, 60, 40, [&](int x, int y) {
            double t = std::clamp((time * 80 - (x + 0.5)) / 20, 0.0, 1.0);
            double turned = std::clamp((t - 0.5) * 20 + 0.5, 0.0, 1.0);
            double shine = std::min(1.3 * (1 - std::abs(2 * t - 1)), 1.0);
            const double light[] = {linear(0.6), 1, linear(0.8), 1};
            Pixel out;
            for (int c = 0; c < 4; ++c)
                out[c] = (1 - shine) * ((1 - turned) * p.get(x, y)[c] + turned * q.get(x, y)[c]) +
                         shine * light[c];
            return out;
        });
        EXPECT_LT(error(image, expected), floatError) << time;
    }
}

TEST(Transitions, BarsSlideAwayOneAfterTheOther) {
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

TEST(Transitions, DisintegrationFollowsAMask) {
    Picture p = noise(40, 30, 114), q = noise(40, 30, 115), mask = noise(40, 30, 116, true);
    auto at = [&](double time) {
        return filter("CIDisintegrateWithMaskTransition", {{"inputImage", imageOf(p)},
                                                           {"inputTargetImage", imageOf(q)},
                                                           {"inputMaskImage", imageOf(mask)},
                                                           {"inputShadowRadius", 3.0},
                                                           {"inputShadowDensity", 0.6},
                                                           {"inputShadowOffset", Numbers{4, -2}},
                                                           {"inputTime", time}});
    };
    EXPECT_LT(error(at(0), p), floatError);
    EXPECT_LT(error(at(1), q), floatError);
    double time = 0.4;
    auto left = [&](int x, int y) {
        Pixel m = mask.get(x, y);
        double light = coded(0.2126 * m[0] + 0.7152 * m[1] + 0.0722 * m[2]);
        return 1 - std::clamp((light - 1 + time * 1.05) / 0.05, 0.0, 1.0);
    };
    Picture remains = filled(0, 0, 40, 30, [&](int x, int y) { return Pixel{0, 0, 0, left(x, y)}; });
    Picture shadow = trueGaussian(remains, 3);
    Picture expected = filled(0, 0, 40, 30, [&](int x, int y) {
        double dark = 0.6 * shadow.get(x - 4, y + 2)[3];
        Pixel out;
        for (int c = 0; c < 4; ++c) {
            double below = q.get(x, y)[c] * (c < 3 ? 1 - dark : 1);
            out[c] = below + left(x, y) * (p.get(x, y)[c] - below);
        }
        return out;
    });
    EXPECT_LT(error(at(time), expected), halfStep); // the shadow's Gaussian
    setTileSize(16);
    EXPECT_LT(error(at(time), expected), halfStep);
    setTileSize(0);
}
