// CIRandomGenerator, against pixels of Core Image's picture.
#include "picture_samples.h"

using namespace reference;

TEST(CIRandomGenerator, IsCoreImagesNoise) {
    Image image = filter("CIRandomGenerator", {});
    EXPECT_EQ(image->extent(), Rect::infinite());
    expectPixel(image, 0, 0, {255, 255, 255, 17}, 0.6);
    expectPixel(image, 1, 0, {255, 96, 211, 82}, 0.6);
    expectPixel(image, 2, 0, {190, 234, 237, 196}, 0.6);
    expectPixel(image, 3, 0, {177, 130, 234, 202}, 0.6);
    expectPixel(image, 0, 1, {105, 215, 136, 126}, 0.6);
    expectPixel(image, 255, 255, {255, 255, 213, 86}, 0.6);
    expectPixel(image, 300, 290, {206, 107, 81, 191}, 0.6);
    expectPixel(image, 399, 299, {224, 255, 146, 233}, 0.6);
}

TEST(CIRandomGenerator, RepeatsItselfInEveryDirection) {
    Image image = filter("CIRandomGenerator", {});
    Picture tile = rendered(image, 0, 0, 256, 256);
    Picture before = rendered(image, -256, -512, 256, 256);
    EXPECT_EQ(before.pixels, tile.pixels);
    // Colours come as they are: some exceed alpha.
    EXPECT_TRUE(
        std::any_of(tile.pixels.begin(), tile.pixels.end(), [](const Pixel& p) { return p[0] > p[3]; }));
    expectSameInTiles(image, -20, -20, 60, 60);
}
