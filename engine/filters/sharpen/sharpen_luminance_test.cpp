// CISharpenLuminance, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CISharpenLuminance, LeavesTheColour) {
    Picture p = noise(60, 44, 75, true);
    double radius = 2.2, sharpness = 0.9;
    Picture wide = filled(-20, -20, 100, 84, [&](int x, int y) { return clamped(p, x, y); });
    Picture blurred = trueGaussian(wide, radius);
    Picture expected = filled(0, 0, 60, 44, [&](int x, int y) {
        Pixel q = p.get(x, y);
        double add = sharpness * (luminance(q) - luminance(blurred.get(x, y)));
        return Pixel{q[0] + add, q[1] + add, q[2] + add, q[3]};
    });
    Values values{{"inputImage", imageOf(p)}, {"inputRadius", radius}, {"inputSharpness", sharpness}};
    Image image = filter("CISharpenLuminance", values);
    EXPECT_EQ(image->extent(), (Rect{0, 0, 60, 44}));
    EXPECT_LT(error(image, expected), halfStep); // the engine's Gaussian ends where it is small
    Image flat = crop(constant({0.7, 0.5, 0.2, 0.5}), {0, 0, 30, 30});
    Picture same = rendered(flat, -5, -5, 40, 40);
    EXPECT_LT(error(filter("CISharpenLuminance", {{"inputImage", flat}}), same), floatError);
}
