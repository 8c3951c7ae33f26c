// CIClamp, against pixels of the nearest edge.
#include "reference.h"

using namespace reference;

TEST(CIClamp, ContinuesTheEdgesOfARectangle) {
    Picture p = noise(40, 30, 1);
    Image image = filter("CIClamp", {{"inputImage", imageOf(p)}, {"inputExtent", Numbers{5, 6, 20, 10}}});
    EXPECT_EQ(image->extent(), Rect::infinite());
    Picture expected = filled(
        -10, -10, 60, 60, [&](int x, int y) { return p.get(std::clamp(x, 5, 24), std::clamp(y, 6, 15)); });
    EXPECT_LT(error(image, expected), 1e-6);
}

TEST(CIClamp, OfNothingIsNothing) {
    Image image =
        filter("CIClamp", {{"inputImage", imageOf(noise(4, 4, 1))}, {"inputExtent", Numbers{50, 60, 2, 1}}});
    EXPECT_TRUE(image->extent().isEmpty());
}
