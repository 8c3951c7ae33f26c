// CICircleSplashDistortion, against a reference in double precision.
#include "distorted.h"

using namespace reference;

TEST(CICircleSplashDistortion, DrawsTheRimOutwards) {
    Picture p = noise(60, 60, 81);
    Image image = distorted("CICircleSplashDistortion", p, {{"inputRadius", 14.0}});
    EXPECT_EQ(image->extent(), Rect::infinite());
    EXPECT_LT(error(image, comesFrom(p,
                                     [](Point q) {
                                         double f = std::min(1.0, 14 / std::hypot(q.x, q.y));
                                         return Point{q.x * f, q.y * f};
                                     })),
              distortionError);
    EXPECT_LT(tileError(image), distortionError);
    EXPECT_EQ(image->regionOfInterest(0, {900, 900, 901, 901}),
              (Rect{centre.x - 15, centre.y - 15, centre.x + 15, centre.y + 15}));
}
