// CIColorMonochrome, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIColorMonochrome, MixesWithTheLuminanceTimesTheColour) {
    Picture p = noise(31, 9, 37);
    Picture expected = mapped(p, [](Pixel q) {
        double y = luminance(q), tint[3] = {linear(0.2), linear(0.5), linear(0.9)};
        for (int c = 0; c < 3; ++c) q[c] += 0.7 * (y * tint[c] - q[c]);
        return q;
    });
    Values values{
        {"inputImage", imageOf(p)}, {"inputColor", Color{0.2, 0.5, 0.9, 1}}, {"inputIntensity", 0.7}};
    EXPECT_LT(error(filter("CIColorMonochrome", values), expected), floatError);
}
