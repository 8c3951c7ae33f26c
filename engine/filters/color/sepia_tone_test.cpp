// CISepiaTone, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CISepiaTone, TintsCodedColour) {
    Picture p = noise(37, 11, 5);
    Picture expected = mapped(p, [](Pixel q) -> Pixel {
        double red = coded(q[0]), green = coded(q[1]), blue = coded(q[2]);
        double r = 0.393 * red + 0.769 * green + 0.189 * blue, g = 0.349 * red + 0.686 * green + 0.168 * blue;
        double b = 0.272 * red + 0.534 * green + 0.131 * blue;
        return {linear(red + 0.6 * (r - red)), linear(green + 0.6 * (g - green)),
                linear(blue + 0.6 * (b - blue)), q[3]};
    });
    EXPECT_LT(error(filter("CISepiaTone", {{"inputImage", imageOf(p)}, {"inputIntensity", 0.6}}), expected),
              floatError);
}
