// CIShadedMaterial: slopes show the side of the sphere that faces as they do.
#include "reference.h"

using namespace reference;

namespace {

/// The sphere: red grows to the right, green upwards.
Picture sphere() {
    return filled(5, 7, 100, 100, [](int x, int y) {
        return Pixel{(x - 5 + 0.5) / 100, (y - 7 + 0.5) / 100, 0.25, 1};
    });
}

Picture shaded(const Picture& heights, double scale) {
    return rendered(filter("CIShadedMaterial", {{"inputImage", imageOf(heights)},
                                                {"inputShadingImage", imageOf(sphere())},
                                                {"inputScale", scale}}),
                    0, 0, heights.width, heights.height);
}

Picture ramp(double perX, double perY) {
    return filled(0, 0, 30, 30, [=](int x, int y) {
        double v = 0.5 + perX * (x - 15) + perY * (y - 15);
        return Pixel{v, v, v, 1};
    });
}

} // namespace

TEST(CIShadedMaterial, FlatPlacesShowTheMiddle) {
    Picture out = shaded(ramp(0, 0), 50);
    for (auto [x, y] : {std::pair{0, 0}, {15, 15}, {29, 3}}) {
        EXPECT_NEAR(out.at(x, y)[0], 0.5, 1e-4);
        EXPECT_NEAR(out.at(x, y)[1], 0.5, 1e-4);
        EXPECT_NEAR(out.at(x, y)[2], 0.25, 1e-4);
        EXPECT_NEAR(out.at(x, y)[3], 1, 1e-5);
    }
}

// A slope of 1 that rises to the right faces half to the left: the normal is (-1, 0, 1) / sqrt(2).
TEST(CIShadedMaterial, SlopesFaceDownhill) {
    double side = 0.5 * std::sqrt(0.5);
    Picture right = shaded(ramp(0.02, 0), 50), up = shaded(ramp(0, -0.02), 50);
    EXPECT_NEAR(right.at(15, 15)[0], 0.5 - side, 1e-3);
    EXPECT_NEAR(right.at(15, 15)[1], 0.5, 1e-3);
    EXPECT_NEAR(up.at(15, 15)[0], 0.5, 1e-3);
    EXPECT_NEAR(up.at(15, 15)[1], 0.5 + side, 1e-3);
    EXPECT_NEAR(shaded(ramp(0.02, 0), 0).at(15, 15)[0], 0.5, 1e-4);
}

TEST(CIShadedMaterial, KeepsTheShapeOfTheField) {
    Picture field = filled(0, 0, 30, 30, [](int x, int) {
        return x < 15 ? Pixel{} : Pixel{0.4, 0.4, 0.4, 0.5};
    });
    Picture out = shaded(field, 1);
    EXPECT_EQ(out.at(5, 5)[3], 0);
    EXPECT_NEAR(out.at(25, 5)[3], 0.5, 1e-5);
}

TEST(CIShadedMaterial, IsTheSameInTiles) {
    Image image = filter("CIShadedMaterial", {{"inputImage", imageOf(noise(40, 30, 3))},
                                              {"inputShadingImage", imageOf(sphere())}});
    EXPECT_EQ(image->extent(), (Rect{0, 0, 40, 30}));
    EXPECT_LT(difference(rendered(image, 0, 0, 40, 30), inTiles(image, 0, 0, 40, 30)), 1e-5);
}
