// CIHueAdjust, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIHueAdjust, TurnsThereAndBackAndKeepsGray) {
    Picture p = noise(37, 11, 6);
    auto turned = [](const Image& image, double angle) {
        return filter("CIHueAdjust", {{"inputImage", image}, {"inputAngle", angle}});
    };
    EXPECT_LT(error(turned(turned(imageOf(p), 1.1), -1.1), p), floatError);
    Picture gray = mapped(p, [](Pixel q) -> Pixel { return {q[0], q[0], q[0], q[3]}; });
    EXPECT_LT(error(turned(imageOf(gray), 2), gray), floatError);
    // Half a turn mirrors the chroma at the gray of the same Y.
    Picture expected = mapped(p, [](Pixel q) {
        double y = 0.299 * q[0] + 0.587 * q[1] + 0.114 * q[2];
        return Pixel{2 * y - q[0], 2 * y - q[1], 2 * y - q[2], q[3]};
    });
    EXPECT_LT(error(turned(imageOf(p), M_PI), expected), floatError);
}
