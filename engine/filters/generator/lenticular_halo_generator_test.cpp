// CILenticularHaloGenerator, against pixels of Core Image's picture.
#include "picture_samples.h"

using namespace reference;

namespace {

Values halo(double overlap) {
    return {{"inputCenter", Numbers{100, 100}}, {"inputColor", Color{126 / 255., 1, 232 / 255., 1}},
            {"inputHaloRadius", 50.0},          {"inputHaloWidth", 50.0},
            {"inputHaloOverlap", overlap},      {"inputStriationStrength", 1.0},
            {"inputStriationContrast", 1.0},    {"inputTime", 1.0}};
}

} // namespace

TEST(CILenticularHaloGenerator, IsAsCoreImageDrawsIt) {
    Image image = filter("CILenticularHaloGenerator", halo(1));
    EXPECT_EQ(image->extent(), (Rect{0, 0, 200, 200}));
    expectPixel(image, 100, 175, {125, 255, 231, 147});
    expectPixel(image, 175, 100, {125, 255, 231, 161});
    expectPixel(image, 100, 25, {125, 255, 231, 118});
    expectPixel(image, 25, 100, {125, 255, 233, 116});
    expectPixel(image, 150, 150, {126, 255, 233, 195});
    expectPixel(image, 60, 40, {126, 255, 231, 194});
    expectPixel(image, 40, 150, {127, 255, 232, 155});
    expectPixel(image, 100, 160, {128, 255, 233, 58});
    expectPixel(image, 10, 100, {128, 255, 232, 44});
    expectPixel(image, 100, 100, {0, 0, 0, 0});
    expectSameInTiles(image, 0, 0, 200, 200);
}

TEST(CILenticularHaloGenerator, ComesApartWithLessOverlap) {
    Image image = filter("CILenticularHaloGenerator", halo(0));
    EXPECT_EQ(image->extent(), (Rect{0, 0, 200, 200}));
    // Outwards from the radius: a third of the width blue, a third green, a third red.
    for (int x = 151; x < 199; ++x) {
        Pixel p = rendered(image, x, 100, 1, 1).get(x, 100);
        double out = x + 0.5 - 150;
        EXPECT_EQ(p[2] > 0, out < 50 / 3.) << x;
        EXPECT_EQ(p[1] > 0, out > 50 / 3. && out < 100 / 3.) << x;
        EXPECT_EQ(p[0] > 0, out > 100 / 3.) << x;
    }
}
