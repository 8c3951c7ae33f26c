// CIColorPosterize, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIColorPosterize, LeavesEvenStepsOfCodedColour) {
    // Away from the places where a step begins, which rounding may put on either side.
    Picture p = filled(0, 0, 41, 7, [](int x, int y) -> Pixel {
        double c = (x + 0.25) / 41.5, a = y < 3 ? 1 : 0.5;
        return {a * linear(c), a * linear(1 - c), a * linear(c * 0.9), a};
    });
    Picture expected = mapped(p, [](Pixel q) {
        for (int c = 0; c < 3; ++c) q[c] = linear(std::floor(coded(q[c]) * 3 + 0.5) / 3);
        return q;
    });
    EXPECT_LT(error(filter("CIColorPosterize", {{"inputImage", imageOf(p)}, {"inputLevels", 4.0}}), expected),
              floatError);
}
