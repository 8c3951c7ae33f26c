// CICrop, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CICrop, KeepsPixelsWhoseCentresAreInside) {
    Picture p = noise(30, 30, 13);
    Image cropped =
        filter("CICrop", {{"inputImage", imageOf(p)}, {"inputRectangle", Numbers{4.4, 5, 10, 12.6}}});
    EXPECT_EQ(cropped->extent(), (Rect{4.4, 5, 14.4, 17.6}));
    Picture expected = filled(0, 0, 30, 30, [&](int x, int y) {
        return x >= 4 && x < 14 && y >= 5 && y < 18 ? p.get(x, y) : Pixel{};
    });
    EXPECT_LT(error(cropped, expected), 1e-6);
    EXPECT_EQ(filter("CICrop", {{"inputImage", cropped}})->extent(), cropped->extent());
}
