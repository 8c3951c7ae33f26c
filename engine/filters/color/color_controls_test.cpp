// CIColorControls, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIColorControls, ChangesSaturationThenContrastThenBrightness) {
    Picture p = noise(37, 11, 4);
    Picture expected = mapped(p, [](Pixel q) {
        double y = luminance(q);
        for (int c = 0; c < 3; ++c) q[c] = (y + 1.4 * (q[c] - y) - 0.5) * 1.3 + 0.5 + 0.1;
        return q;
    });
    Values values{{"inputImage", imageOf(p)},
                  {"inputSaturation", 1.4},
                  {"inputBrightness", 0.1},
                  {"inputContrast", 1.3}};
    EXPECT_LT(error(filter("CIColorControls", values), expected), floatError);
}
