// CITwirlDistortion, against a reference in double precision and a picture of Core Image's.
#include "distorted.h"

using namespace reference;

TEST(CITwirlDistortion, TurnsTheInsideOfACircle) {
    Picture p = noise(60, 60, 14);
    Picture expected = filled(-5, -5, 70, 70, [&](int x, int y) {
        double dx = x + 0.5 - 30, dy = y + 0.5 - 28, d = std::hypot(dx, dy), t = std::max(0.0, 1 - d / 25);
        double turn = -2 * smoothstep(t);
        return bilinear(p, 30 + dx * std::cos(turn) - dy * std::sin(turn),
                        28 + dx * std::sin(turn) + dy * std::cos(turn));
    });
    Image image = filter("CITwirlDistortion", {{"inputImage", imageOf(p)},
                                               {"inputCenter", Numbers{30, 28}},
                                               {"inputRadius", 25.0},
                                               {"inputAngle", 2.0}});
    EXPECT_LT(error(image, expected), 1e-4); // a turn's float error times the steepest edge
}

// A picture of 638 by 475 pixels with the defaults, whose edges lie at these places in Core Image's picture
// of half the size, 394 by 313 pixels.
TEST(CITwirlDistortion, HasTheEdgesOfCoreImagesPicture) {
    Image image =
        filter("CITwirlDistortion", {{"inputImage", crop(constant({1, 1, 1, 1}), {0, 0, 638, 475})}});
    EXPECT_EQ(image->extent(), (Rect{-150, -150, 638, 475}));
    const struct {
        double x, y;
        int across, up; // towards where the picture is
    } edges[] = {{0, 413, 1, 0},   {-38, 319, 1, 0}, {-62, 225, 1, 0},  {-58, 163, 1, 0}, {300, 163, -1, 0},
                 {336, 163, 1, 0}, {-36, 101, 1, 0}, {296, 101, -1, 0}, {368, 101, 1, 0}, {252, 7, -1, 0},
                 {47, 20, 0, 1},   {245, 0, 0, 1},   {323, 176, 0, 1},  {441, 0, 0, 1},   {165, -50, 0, 1}};
    for (auto [x, y, across, up] : edges) {
        EXPECT_GT(alphaAt("CITwirlDistortion", 638, 475, {}, x + 4 * across, y + 4 * up), 0.9)
            << x << ' ' << y;
        EXPECT_LT(alphaAt("CITwirlDistortion", 638, 475, {}, x - 4 * across, y - 4 * up), 0.1)
            << x << ' ' << y;
    }
}
