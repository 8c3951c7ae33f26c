// CIRandomGenerator, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIRandomGenerator, IsEvenAndIndependent) {
    Image image = filter("CIRandomGenerator", {});
    EXPECT_EQ(image->extent(), Rect::infinite());
    Picture p = rendered(image, -150, -100, 300, 300);
    std::array<std::array<int, 10>, 4> counts{};
    std::array<double, 4> toRight{}, above{};
    double redGreen = 0;
    auto number = [&](int x, int y, int c) {
        Pixel q = p.get(x, y);
        return (c < 3 ? q[c] / q[3] : q[3]) - 0.5;
    };
    for (int y = -100; y < 199; ++y)
        for (int x = -150; x < 149; ++x) {
            for (int c = 0; c < 4; ++c) {
                ++counts[c][std::clamp(int((number(x, y, c) + 0.5) * 10), 0, 9)];
                toRight[c] += number(x, y, c) * number(x + 1, y, c);
                above[c] += number(x, y, c) * number(x, y + 1, c);
            }
            redGreen += number(x, y, 0) * number(x, y, 1);
        }
    double n = 299 * 299, fiveSigma = 5 / std::sqrt(n) / 12; // of the mean of products
    for (int c = 0; c < 4; ++c) {
        for (int count : counts[c]) EXPECT_NEAR(count, n / 10, 5 * std::sqrt(n / 10));
        EXPECT_LT(std::abs(toRight[c] / n), fiveSigma);
        EXPECT_LT(std::abs(above[c] / n), fiveSigma);
    }
    EXPECT_LT(std::abs(redGreen / n), fiveSigma);
    EXPECT_EQ(difference(rendered(image, 0, 0, 20, 20), part(p, 0, 0, 20, 20)), 0);
}
