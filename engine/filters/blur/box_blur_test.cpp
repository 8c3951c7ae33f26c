// CIBoxBlur, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIBoxBlur, IsTheMeanOfASquare) {
    Picture p = noise(50, 41, 9);
    // The side of Core Image's square with a radius of 40 is 39 pixels.
    const struct {
        double radius;
        int side;
    } cases[] = {{1, 1}, {2.9, 1}, {3, 3}, {10, 9}, {40, 39}};
    for (auto [radius, side] : cases) {
        int reach = side / 2;
        auto weight = [side = side](int) { return 1.0 / side; };
        Image image = filter("CIBoxBlur", {{"inputImage", imageOf(p)}, {"inputRadius", radius}});
        EXPECT_LT(error(image, bothWays(p, reach, weight)), floatError) << radius;
        EXPECT_EQ(image->extent(), (Rect{0, 0, 50, 41}.grown(reach, reach))) << radius;
        EXPECT_LT(difference(inTiles(image, -20, -20, 90, 81), rendered(image, -20, -20, 90, 81)),
                  floatError);
    }
}
