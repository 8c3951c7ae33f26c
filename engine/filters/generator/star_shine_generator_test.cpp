// CIStarShineGenerator, against pixels of Core Image's picture.
#include "picture_samples.h"

using namespace reference;

TEST(CIStarShineGenerator, IsAsCoreImageDrawsIt) {
    Image image = filter("CIStarShineGenerator", {{"inputRadius", 20.0}});
    EXPECT_EQ(image->extent(), Rect::infinite());
    // The picture lies on black.
    image = composite(image, constant({0, 0, 0, 1}));
    expectPixel(image, 150, 190, {187, 170, 156, 255}, 2);
    expectPixel(image, 150, 200, {129, 111, 94, 255}, 2);
    expectPixel(image, 200, 100, {119, 109, 101, 255}, 2);
    expectPixel(image, 250, 150, {57, 44, 31, 255}, 2);
    expectPixel(image, 60, 60, {46, 36, 26, 255}, 2);
    expectPixel(image, 300, 250, {186, 185, 184, 255}, 2);
    expectPixel(image, 220, 198, {255, 255, 255, 255}, 2);
    expectPixel(image, 350, 150, {26, 19, 11, 255}, 2);
    expectPixel(image, 110, 210, {255, 255, 255, 255}, 2);
    expectSameInTiles(image, 100, 100, 100, 100, floatError);
}

TEST(CIStarShineGenerator, HasWideSpikesWithLargeEpsilon) {
    // What Core Image's picture with these numbers shows: white without a cross, gone at three radii.
    auto star = [](double angle) {
        return filter("CIStarShineGenerator", {{"inputColor", Color{0, 0, 0, 1}},
                                               {"inputRadius", 50.0},
                                               {"inputCrossScale", 3.0},
                                               {"inputCrossAngle", angle},
                                               {"inputCrossOpacity", 1.0},
                                               {"inputCrossWidth", 20.0},
                                               {"inputEpsilon", 2.0}});
    };
    for (double distance : {20.0, 60.0, 100.0, 140.0}) {
        double share = 1 - distance / 150, white = 0.1527 * std::pow(share, 2.17);
        for (double angle : {0.0, 0.5, 1.0}) {
            Pixel p = rendered(star(angle), 150 + int(distance * 0.8), 150 + int(distance * 0.6), 1, 1)
                          .get(150 + int(distance * 0.8), 150 + int(distance * 0.6));
            EXPECT_NEAR(p[0], white, 0.006) << distance << ' ' << angle;
        }
    }
    EXPECT_EQ(rendered(star(0), 310, 150, 1, 1).get(310, 150)[0], 0);
}
