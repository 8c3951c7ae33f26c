// CISmoothLinearGradient, against pixels of Core Image's picture.
#include "reference.h"

using namespace reference;

// From red at (0, 0) to blue at (250, 250): the pixels (k, k) of Core Image's picture.
TEST(CISmoothLinearGradient, LooksAsCoreImagesPicture) {
    Image image = filter("CISmoothLinearGradient", {{"inputPoint0", Numbers{0, 0}},
                                                    {"inputPoint1", Numbers{250, 250}},
                                                    {"inputColor0", Color{1, 0, 0, 1}},
                                                    {"inputColor1", Color{0, 0, 1, 1}}});
    EXPECT_EQ(image->extent(), Rect::infinite());
    struct {
        int k, red, blue;
    } seen[] = {{0, 255, 0},     {20, 253, 38},  {50, 243, 92},  {90, 218, 148}, {120, 192, 183},
                {150, 160, 211}, {200, 90, 243}, {230, 36, 253}, {250, 0, 255},  {290, 0, 255}};
    Picture out = rendered(image, 0, 0, 300, 300);
    for (auto [k, red, blue] : seen) {
        EXPECT_NEAR(255 * coded(out.at(k, k)[0]), red, 1.1) << k;
        EXPECT_NEAR(255 * coded(out.at(k, k)[2]), blue, 1.1) << k;
        EXPECT_EQ(out.at(k, k)[3], 1) << k;
    }
}

TEST(CISmoothLinearGradient, OfOnePlaceIsItsFirstColor) {
    Image image = filter(
        "CISmoothLinearGradient",
        {{"inputPoint0", Numbers{7, 7}}, {"inputPoint1", Numbers{7, 7}}, {"inputColor0", Color{0, 1, 0, 1}}});
    EXPECT_NEAR(rendered(image, 3, 3, 1, 1).at(3, 3)[1], 1, 1e-6);
}
