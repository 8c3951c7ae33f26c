// CIColorClamp, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIColorClamp, KeepsStraightComponentsBetweenLimits) {
    Picture p = noise(37, 11, 30);
    Picture expected(0, 0, 37, 11);
    for (std::size_t i = 0; i < p.pixels.size(); ++i) {
        Pixel q = p.pixels[i];
        const double low[] = {0.2, 0, 0.4, 0.25}, high[] = {0.5, 0.9, 0.6, 0.75};
        double alpha = std::clamp(q[3], low[3], high[3]);
        for (int c = 0; c < 3; ++c)
            expected.pixels[i][c] = alpha * std::clamp(q[3] > 0 ? q[c] / q[3] : 0, low[c], high[c]);
        expected.pixels[i][3] = alpha;
    }
    Values values{{"inputImage", imageOf(p)},
                  {"inputMinComponents", Numbers{0.2, 0, 0.4, 0.25}},
                  {"inputMaxComponents", Numbers{0.5, 0.9, 0.6, 0.75}}};
    EXPECT_LT(error(filter("CIColorClamp", values), expected), floatError);
    EXPECT_LT(error(filter("CIColorClamp", {{"inputImage", imageOf(p)}}), p), floatError);
}
