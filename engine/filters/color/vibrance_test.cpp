// CIVibrance, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIVibrance, ChangesDullColoursMost) {
    Picture p = noise(61, 17, 31);
    for (double amount : {0.7, -0.6}) {
        Picture expected = mapped(p, [&](Pixel q) {
            double y = luminance(q), high = std::max({q[0], q[1], q[2]}), low = std::min({q[0], q[1], q[2]});
            double t = q[0] > q[2] ? std::clamp((q[1] - q[2]) / (q[0] - q[2]), 0.0, 1.0) : 0;
            double gain = 1 + amount * (high > 0 ? low / high : 1) * (1 - 2 * t + 2 * t * t);
            return Pixel{y + gain * (q[0] - y), y + gain * (q[1] - y), y + gain * (q[2] - y), q[3]};
        });
        Values values{{"inputImage", imageOf(p)}, {"inputAmount", amount}};
        EXPECT_LT(error(filter("CIVibrance", values), expected), floatError) << amount;
    }
}

TEST(CIVibrance, StandardLeavesThePicture) {
    Image image = imageOf(noise(8, 8, 33));
    EXPECT_EQ(filter("CIVibrance", {{"inputImage", image}}), image);
}
