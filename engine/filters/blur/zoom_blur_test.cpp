// CIZoomBlur, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIZoomBlur, IsTheMeanOfAllSizes) {
    Picture p = noise(50, 40, 84);
    Point centre{18, 11};
    for (double amount : {20.0, 80.0, -60.0}) {
        Picture expected = filled(-40, -40, 130, 120, [&](int x, int y) {
            // As in the engine: one reading for each pixel of the way that the farthest of 64 pixels moves.
            double left = std::floor(x / 64.) * 64 + 0.5 - centre.x, dy = y + 0.5 - centre.y;
            double far = std::hypot(std::max(std::abs(left), std::abs(left + 63)), dy);
            int count = std::max(2, int(far * std::abs(std::exp(-amount / 100) - 1) + 1));
            Pixel out{};
            for (int k = 0; k < count; ++k) {
                double size = std::exp(-amount / 100 * (k + 0.5) / count);
                Pixel q = bilinear(p, centre.x + size * (x + 0.5 - centre.x), centre.y + size * dy);
                for (int c = 0; c < 4; ++c) out[c] += q[c] / count;
            }
            return out;
        });
        Values values{{"inputImage", imageOf(p)},
                      {"inputAmount", amount},
                      {"inputCenter", Numbers{centre.x, centre.y}}};
        Image image = filter("CIZoomBlur", values);
        EXPECT_LT(error(image, expected), 5 * floatError) << amount;
        EXPECT_LT(difference(inTiles(image, -40, -40, 130, 120), expected), 5 * floatError) << amount;
        Picture got = rendered(image, -400, -400, 800, 800);
        for (int y = -400; y < 400; ++y)
            for (int x = -400; x < 400; ++x)
                if (!image->extent().grown(1, 1).contains({x + 0., y + 0., x + 1., y + 1.}))
                    ASSERT_EQ(got.get(x, y)[3], 0) << x << ' ' << y;
    }
}

TEST(CIZoomBlur, FitsInMemoryWhenLong) {
    // Of an infinite picture, from far away: more than can be kept at once.
    Image endless = clampToEdge(imageOf(noise(50, 40, 85, true)));
    Values values{{"inputImage", endless}, {"inputAmount", -200.0}, {"inputCenter", Numbers{-3000, -2000}}};
    Picture got = rendered(filter("CIZoomBlur", values), 100, 100, 5, 4);
    for (const Pixel& q : got.pixels) EXPECT_NEAR(q[3], 1, 1e-4);
}
