// Cropping, and edges continued to infinity.
#include "reference.h"

using namespace reference;

TEST(Crop, EmptyAndNullStayWhatTheyAre) {
    Image image = imageOf(noise(8, 8, 13));
    EXPECT_TRUE(crop(image, {20, 20, 30, 30})->extent().isEmpty());
    EXPECT_EQ(crop(nullptr, {0, 0, 1, 1}), nullptr);
    EXPECT_EQ(crop(image, {-5, -5, 50, 50}), image) << "nothing is cut off";
}

TEST(Clamp, ContinuesTheEdgeWithoutEnd) {
    Picture p = noise(30, 30, 13);
    Picture expected = filled(-700, -9, 1500, 50, [&](int x, int y) { return clamped(p, x, y); });
    Image image = clampToEdge(imageOf(p));
    EXPECT_EQ(image->extent(), Rect::infinite());
    EXPECT_LT(error(image, expected), 1e-6);
    EXPECT_TRUE(clampToEdge(empty())->extent().isEmpty());
}
