// CIPixellate, against pixels of Core Image's picture and a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIPixellate, ShowsThePictureAtTheMiddleOfSquares) {
    Picture p = noise(41, 33, 91);
    for (double scale : {1.0, 7.0, 9.5}) {
        auto middle = [=](double v, double centre) {
            return centre + (std::floor((v - centre) / scale) + 0.5) * scale;
        };
        Picture expected = filled(-12, -12, 65, 57, [&](int x, int y) {
            return bilinear(p, middle(x + 0.5, 20.3), middle(y + 0.5, 11));
        });
        Image image =
            filter("CIPixellate",
                   {{"inputImage", imageOf(p)}, {"inputScale", scale}, {"inputCenter", Numbers{20.3, 11}}});
        EXPECT_LT(error(image, expected), placeError) << scale;
        EXPECT_LT(difference(inTiles(image, -12, -12, 65, 57), expected), placeError) << scale;
        EXPECT_EQ(image->extent(), (Rect{-scale / 2, -scale / 2, 41 + scale / 2, 33 + scale / 2}));
    }
}

TEST(CIPixellate, PutsLinesThroughTheCentre) {
    // As in Core Image's picture, which is 638 x 475 pixels large: the first square begins at -2.
    Image white = crop(constant({1, 1, 1, 1}), {0, 0, 638, 475});
    Picture got = rendered(filter("CIPixellate", {{"inputImage", white}}), -4, 200, 646, 1);
    for (int x = -4; x < 642; ++x) EXPECT_EQ(got.get(x, 200)[3], x >= -2 && x < 638 ? 1 : 0) << x;
}
