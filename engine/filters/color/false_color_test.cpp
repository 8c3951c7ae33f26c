// CIFalseColor, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIFalseColor, MixesTwoColoursByBrightness) {
    Picture p = noise(37, 11, 34);
    Values values{{"inputImage", imageOf(p)},
                  {"inputColor0", Color{0.2, 0.4, 0, 1}},
                  {"inputColor1", Color{1, 0.5, 0.7, 0.5}}};
    const double first[] = {linear(0.2), linear(0.4), 0, 1};
    const double second[] = {0.5, 0.5 * linear(0.5), 0.5 * linear(0.7), 0.5};
    Picture expected = filled(0, 0, 37, 11, [&](int x, int y) {
        Pixel q = p.get(x, y), out;
        double t = q[3] > 0 ? luminance(q) / q[3] : 0;
        for (int c = 0; c < 4; ++c) out[c] = q[3] * (first[c] * (1 - t) + second[c] * t);
        return out;
    });
    EXPECT_LT(error(filter("CIFalseColor", values), expected), floatError);
}
