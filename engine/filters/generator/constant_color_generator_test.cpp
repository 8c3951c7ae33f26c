// CIConstantColorGenerator, against a reference in double precision.
#include "two_color_reference.h"

using namespace reference;

TEST(CIConstantColorGenerator, IsTheSameEverywhere) {
    Image image = filter("CIConstantColorGenerator", {{"inputColor", secondColor}});
    EXPECT_EQ(image->extent(), Rect::infinite());
    EXPECT_LT(error(image, filled(-1000000, 5, 3, 3, [](int, int) { return mixed(1); })), floatError);
}
