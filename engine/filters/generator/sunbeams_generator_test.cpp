// CISunbeamsGenerator, by what Core Image's pictures have in common.
#include "picture_samples.h"

using namespace reference;

namespace {

Pixel at(const Image& image, int x, int y) { return rendered(image, x, y, 1, 1).get(x, y); }

} // namespace

TEST(CISunbeamsGenerator, ShinesMoreThanOpaquely) {
    Image image = filter("CISunbeamsGenerator", {{"inputCenter", Numbers{150.5, 150.5}},
                                                 {"inputSunRadius", 20.0},
                                                 {"inputMaxStriationRadius", 3.0},
                                                 {"inputStriationStrength", 0.0}});
    EXPECT_EQ(image->extent(), (Rect{90.5, 90.5, 210.5, 210.5}));
    // The square of the distance, and gone at three radii: at half a radius 4, less a sixth.
    EXPECT_NEAR(at(image, 160, 150)[0], 4 * 5 / 6., 1e-4);
    EXPECT_NEAR(at(image, 160, 150)[1], 4 * 5 / 6. * linear(0.5), 1e-4);
    EXPECT_NEAR(at(image, 160, 150)[3], 4 * 5 / 6., 1e-4);
    EXPECT_NEAR(at(image, 150, 170)[3], 2 / 3., 1e-5);
    EXPECT_NEAR(at(image, 110, 150)[3], 1 / 3. / 4, 1e-5);
    EXPECT_EQ(at(image, 100, 100)[3], 0);
    // As bytes, light that adds up beyond full: coded for full alpha, then as often as alpha says.
    expectPixel(image, 160, 150, {255, 255, 0, 255});
}

TEST(CISunbeamsGenerator, HasRays) {
    auto sun = [](double time, double contrast) {
        return filter("CISunbeamsGenerator", {{"inputCenter", Numbers{150.5, 150.5}},
                                              {"inputColor", Color{0, 0, 0, 1}},
                                              {"inputMaxStriationRadius", 5.0},
                                              {"inputStriationContrast", contrast},
                                              {"inputTime", time}});
    };
    // White, the same all along a direction but for the fading to nothing at 200.
    Image image = sun(0.3, 1);
    Pixel near = at(image, 150 + 30, 150 + 40), far = at(image, 150 + 90, 150 + 120);
    EXPECT_GT(near[3], 0);
    EXPECT_EQ(near[0], near[2]);
    EXPECT_NEAR(near[3] / 0.75, far[3] / 0.25, 1e-4);
    EXPECT_NE(at(image, 190, 150)[3], at(image, 150, 190)[3]);
    // Without contrast, half the strength all around; after a whole turn of time the same rays.
    EXPECT_NEAR(at(sun(0, 0), 190, 150)[0], 0.8 * 0.25, 1e-5);
    EXPECT_NEAR(at(sun(0, 1), 190, 160)[0], at(sun(1, 1), 190, 160)[0], 1e-5);
    EXPECT_NE(at(sun(0, 1), 190, 160)[0], at(sun(0.5, 1), 190, 160)[0]);
    expectSameInTiles(image, 100, 100, 100, 100);
}
