// CIHexagonalPixellate, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIHexagonalPixellate, ShowsThePictureAtTheMiddleOfHexagons) {
    Picture p = noise(41, 33, 92);
    double side = 4.7;
    Picture expected = filled(-12, -12, 65, 57, [&](int x, int y) {
        // The nearest of all middles, of which every second row is shifted by half the distance.
        Point best{};
        double least = 1e30;
        for (int j = -15; j <= 15; ++j)
            for (int i = -15; i <= 15; ++i) {
                double cx = 20 + side * std::sqrt(3.) * (i + (j % 2 ? 0.5 : 0)), cy = 11 + side * 1.5 * j;
                double d = std::hypot(x + 0.5 - cx, y + 0.5 - cy);
                if (d < least - 1e-12) least = d, best = {cx, cy};
            }
        return bilinear(p, best.x, best.y);
    });
    Image image =
        filter("CIHexagonalPixellate",
               {{"inputImage", imageOf(p)}, {"inputScale", side}, {"inputCenter", Numbers{20, 11}}});
    EXPECT_LT(error(image, expected), placeError);
    EXPECT_LT(difference(inTiles(image, -12, -12, 65, 57), expected), placeError);
}
