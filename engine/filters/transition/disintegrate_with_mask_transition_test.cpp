// CIDisintegrateWithMaskTransition, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIDisintegrateWithMaskTransition, FollowsAMask) {
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
        double light = coded(luminance(m));
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
