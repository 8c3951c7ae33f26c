// CIRedEyeCorrections, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIRedEyeCorrections, TakeTheRedOutOfPupils) {
    auto smooth = [](double t) {
        t = std::clamp(t, 0.0, 1.0);
        return t * t * (3 - 2 * t);
    };
    Picture p = filled(0, 0, 900, 40, [](int x, int y) {
        // Pupil red and skin, as a checkerboard with a dark and a bright half.
        double f = x < 30 ? 0.2 : 1;
        return (x + y) % 2 ? Pixel{0.5 * f, 0.02 * f, 0.03 * f, 1} : Pixel{0.7 * f, 0.4 * f, 0.3 * f, 1};
    });
    Numbers pupils{20, 15, 8, 700.5, 21, 6, 5, 5, -3, 1}; // one with an impossible radius, and a left-over
    Picture expected = filled(0, 0, 900, 40, [&](int x, int y) {
        Pixel q = p.get(x, y);
        for (int k : {0, 3}) {
            double d = std::hypot(x + 0.5 - pupils[k], y + 0.5 - pupils[k + 1]) / pupils[k + 2];
            double t = smooth((1.2 - d) / 0.4) * smooth((q[0] / std::max(q[1], q[2]) - 3) / 3);
            q[0] += t * ((q[1] + q[2]) / 2 - q[0]);
        }
        return q;
    });
    Image image =
        filter("CIRedEyeCorrections", {{"inputImage", imageOf(p)}, {"inputCorrectionInfo", pupils}});
    EXPECT_LT(error(image, expected), floatError);
    EXPECT_LT(expected.get(20, 15)[0], 0.03) << "a pupil";
    EXPECT_EQ(expected.get(21, 15)[0], p.get(21, 15)[0]) << "skin beside it";
}

TEST(CIRedEyeCorrections, StandardLeavesThePicture) {
    Image image = imageOf(noise(8, 8, 33));
    EXPECT_EQ(filter("CIRedEyeCorrections", {{"inputImage", image}}), image);
}
