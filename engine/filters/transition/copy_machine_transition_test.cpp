// CICopyMachineTransition, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CICopyMachineTransition, TurnsUnderTheLight) {
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
