// CIMaskedVariableBlur: how the mask chooses among blurs.
#include "reference.h"

using namespace reference;

namespace {

Picture gray(int w, int h, double v) {
    return filled(0, 0, w, h, [=](int, int) { return Pixel{v, v, v, 1}; });
}

Image blurred(const Picture& p, const Picture& mask, double radius) {
    return filter("CIMaskedVariableBlur",
                  {{"inputImage", imageOf(p)}, {"inputMask", imageOf(mask)}, {"inputRadius", radius}});
}

/// A white line on black, whose spread a blur tells.
Picture line() {
    return filled(0, 0, 81, 41, [](int x, int) {
        double v = x == 40;
        return Pixel{v, v, v, 1};
    });
}

/// The standard deviation of the line's spread.
double spread(const Image& image) {
    Picture out = rendered(image, 0, 20, 81, 1);
    double sum = 0, square = 0;
    for (int x = 0; x < 81; ++x) sum += out.at(x, 20)[0], square += out.at(x, 20)[0] * (x - 40) * (x - 40);
    return std::sqrt(square / sum);
}

} // namespace

TEST(CIMaskedVariableBlur, LeavesWhatTheMaskDoesNotShow) {
    Picture p = noise(60, 40, 1);
    Picture half = filled(0, 0, 60, 40, [](int x, int) { return x < 30 ? Pixel{} : Pixel{1, 1, 1, 1}; });
    Picture out = rendered(blurred(p, half, 10), 0, 0, 60, 40);
    EXPECT_LT(difference(part(out, 0, 0, 30, 40), part(p, 0, 0, 30, 40)), 1e-6);
    EXPECT_GT(difference(part(out, 30, 0, 30, 40), part(p, 30, 0, 30, 40)), 0.2);
    EXPECT_LT(error(filter("CIMaskedVariableBlur", {{"inputImage", imageOf(p)}}), p), 1e-6);
    EXPECT_LT(error(blurred(p, half, 0), p), 1e-6);
}

// The widths that Core Image's picture with radius 20 has where the mask has that light: below 0.66 pixels
// nothing, and then about 1.2 times the light times the radius.
TEST(CIMaskedVariableBlur, IsAsWideAsCoreImagesPicture) {
    struct {
        double light, low, high;
    } seen[] = {{0.03, 0, 1e-3}, {0.066, 1.4, 1.6}, {0.117, 2.6, 3.1}, {0.23, 5, 6}, {0.5, 10.5, 12.6}};
    for (auto [light, low, high] : seen) {
        double width = spread(blurred(line(), gray(81, 41, light), 20));
        EXPECT_GE(width, low) << light;
        EXPECT_LE(width, high) << light;
    }
}

TEST(CIMaskedVariableBlur, ReachesAsFarAsCoreImagesPyramid) {
    Image image = blurred(gray(660, 483, 0.5), gray(10, 10, 1), 20);
    EXPECT_EQ(image->extent(), (Rect{-192, -192, 896, 704}));
}

TEST(CIMaskedVariableBlur, IsTheSameInTiles) {
    Image image = blurred(noise(60, 40, 2), noise(60, 40, 3), 9);
    EXPECT_LT(difference(rendered(image, -20, -20, 100, 80), inTiles(image, -20, -20, 100, 80)), 1e-5);
}
