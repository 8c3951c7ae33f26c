// CIBumpDistortion and CIPinchDistortion, against references in double precision.
#include "reference.h"

using namespace reference;

namespace {

/// How far the filter is from moving the inside of a circle by `strength`, outwards where that is negative.
double moveError(const char* name, double scale, double strength) {
    Picture p = noise(60, 60, 43);
    Image image = filter(name, {{"inputImage", imageOf(p)},
                                {"inputCenter", Numbers{32, 28}},
                                {"inputRadius", 21.0},
                                {"inputScale", scale}});
    return error(image, filled(0, 0, 60, 60, [&](int x, int y) {
                     double px = x + 0.5 - 32, py = y + 0.5 - 28,
                            inside = 1 - (px * px + py * py) / (21 * 21);
                     if (inside <= 0) return p.get(x, y);
                     double f = 1 - strength * inside * inside;
                     return bilinear(p, 32 + f * px, 28 + f * py);
                 }));
}

} // namespace

TEST(CIBumpDistortion, RaisesAndPressesTheInsideOfACircle) {
    EXPECT_LT(moveError("CIBumpDistortion", 0.6, 0.6), floatError);
    EXPECT_LT(moveError("CIBumpDistortion", -0.8, -0.8), floatError);
}

TEST(CIPinchDistortion, DrawsTheInsideOfACircleTogether) {
    EXPECT_LT(moveError("CIPinchDistortion", 0.9, -0.9), floatError);
}
