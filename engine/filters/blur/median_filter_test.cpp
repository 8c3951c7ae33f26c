// CIMedianFilter, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIMedianFilter, IsTheMedianOfNine) {
    Picture p = noise(41, 33, 73);
    Picture expected = filled(0, 0, 41, 33, [&](int x, int y) {
        Pixel out;
        for (int c = 0; c < 4; ++c) {
            std::vector<double> nine;
            for (int k = 0; k < 9; ++k) nine.push_back(clamped(p, x + k % 3 - 1, y + k / 3 - 1)[c]);
            std::sort(nine.begin(), nine.end());
            out[c] = nine[4];
        }
        return out;
    });
    Image image = filter("CIMedianFilter", {{"inputImage", imageOf(p)}});
    EXPECT_EQ(image->extent(), (Rect{0, 0, 41, 33}));
    EXPECT_LT(error(image, expected), 1e-6);
    EXPECT_LT(difference(inTiles(image, 0, 0, 41, 33), expected), 1e-6);
}
