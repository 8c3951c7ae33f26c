// CIZoomBlur, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIZoomBlur, IsTheMeanOfAHundredSizes) {
    Picture p = noise(50, 40, 84);
    Point centre{18, 11};
    for (double amount : {20.0, 80.0, -60.0}) {
        double share = std::abs(amount) / (std::abs(amount) + 36);
        Picture expected = filled(-40, -40, 130, 120, [&](int x, int y) {
            Pixel out{};
            for (int k = 0; k < 100; ++k) {
                double t = k / 99., size = 1 - share * (1.4 * t - 1.2 * t * t + 0.8 * t * t * t);
                if (amount < 0) size = 1 / size;
                Pixel q = bilinear(p, centre.x + size * (x + 0.5 - centre.x),
                                   centre.y + size * (y + 0.5 - centre.y));
                for (int c = 0; c < 4; ++c) out[c] += q[c] / 100;
            }
            return out;
        });
        Values values{{"inputImage", imageOf(p)},
                      {"inputAmount", amount},
                      {"inputCenter", Numbers{centre.x, centre.y}}};
        Image image = filter("CIZoomBlur", values);
        Rect inside = image->extent().integral();
        for (int y = -40; y < 80; ++y)
            for (int x = -40; x < 90; ++x)
                if (!inside.contains({double(x), double(y), x + 1.0, y + 1.0})) expected.at(x, y) = {};
        EXPECT_LT(error(image, expected), 5 * floatError) << amount;
        EXPECT_LT(difference(inTiles(image, -40, -40, 130, 120), expected), 5 * floatError) << amount;
    }
}

// With an amount of 30, Core Image reads on the way from a pixel to 6/11 of its distance from the centre, and
// its extent is 11/6 times the picture's.
TEST(CIZoomBlur, ReadsAsFarAsCoreImages) {
    Picture p = filled(0, 0, 660, 480, [](int x, int) {
        double v = (x + 0.5) / 660;
        return Pixel{v, x < 300 ? 1. : 0., 0, 1};
    });
    Image image = filter("CIZoomBlur",
                         {{"inputImage", imageOf(p)}, {"inputAmount", 30.0}, {"inputCenter", Numbers{0, 0}}});
    EXPECT_NEAR(image->extent().x1, 660 * 11 / 6., 1e-9);
    EXPECT_NEAR(image->extent().y1, 480 * 11 / 6., 1e-9);
    // The ease is symmetrical, so the mean is the middle of the way.
    EXPECT_NEAR(rendered(image, 500, 200, 1, 1).get(500, 200)[0] * 660, 500.5 * 8.5 / 11, 0.1);
    EXPECT_NEAR(rendered(image, 548, 200, 1, 1).get(548, 200)[1], 0.01, 1e-4);
    EXPECT_EQ(rendered(image, 560, 200, 1, 1).get(560, 200)[1], 0);
    EXPECT_NEAR(rendered(image, 299, 200, 1, 1).get(299, 200)[1], 1, 1e-5);
}

TEST(CIZoomBlur, FitsInMemoryWhenLong) {
    // Of an infinite picture, from far away: more than can be kept at once.
    Image endless = clampToEdge(imageOf(noise(50, 40, 85, true)));
    Values values{{"inputImage", endless}, {"inputAmount", -200.0}, {"inputCenter", Numbers{-3000, -2000}}};
    Picture got = rendered(filter("CIZoomBlur", values), 100, 100, 5, 4);
    for (const Pixel& q : got.pixels) EXPECT_NEAR(q[3], 1, 1e-4);
}
