// CIPinchDistortion, against a reference in double precision and a picture of Core Image's.
#include "distorted.h"

using namespace reference;

namespace {

Image pinched(Image image, double scale) {
    return filter("CIPinchDistortion", {{"inputImage", image}, {"inputScale", scale}});
}

} // namespace

TEST(CIPinchDistortion, DrawsAPictureTogether) {
    Picture p = noise(60, 60, 43);
    for (double scale : {0.4, 0.9}) {
        Image image = distorted("CIPinchDistortion", p, {{"inputRadius", 21.0}, {"inputScale", scale}});
        Picture expected = comesFrom(p, [=](Point q) {
            double f = 1 - scale + scale * std::sqrt(21 / std::hypot(q.x, q.y));
            return Point{f * q.x, f * q.y};
        });
        Rect inside = image->extent().integral();
        for (int y = -40; y < 100; ++y)
            for (int x = -40; x < 100; ++x)
                if (!inside.contains({double(x), double(y), x + 1.0, y + 1.0})) expected.at(x, y) = {};
        EXPECT_LT(error(image, expected), distortionError) << scale;
        EXPECT_LT(tileError(image), distortionError) << scale;
    }
}

// What the defaults make of a picture of 638 by 475 pixels: Core Image's result is 753 by 572 pixels, and its
// edges lie at these places.
TEST(CIPinchDistortion, HasTheEdgesOfCoreImagesPicture) {
    Image image = pinched(crop(constant({1, 1, 1, 1}), {0, 0, 638, 475}), 0.5);
    EXPECT_EQ(image->extent().integral(), (Rect{-10, -27, 743, 545}));
    const struct {
        double y, left, right;
    } rows[] = {{401.5, 1, 727}, {316.5, 12, 721}, {201.5, 31, 715}, {115.5, 33, 715}};
    for (auto [y, left, right] : rows) {
        EXPECT_LT(alphaAt("CIPinchDistortion", 638, 475, {}, left - 2, y), 0.05) << y;
        EXPECT_GT(alphaAt("CIPinchDistortion", 638, 475, {}, left + 2, y), 0.95) << y;
        EXPECT_GT(alphaAt("CIPinchDistortion", 638, 475, {}, right - 2, y), 0.95) << y;
        EXPECT_LT(alphaAt("CIPinchDistortion", 638, 475, {}, right + 2, y), 0.05) << y;
    }
}

// Beyond a scale of 1 the picture shows a second time, upside down; all of that belongs to the extent.
TEST(CIPinchDistortion, ReachesAsFarAsItShows) {
    for (double scale : {0.3, 1.0, 1.3, 2.0}) {
        Image image = pinched(crop(constant({1, 1, 1, 1}), {100, 120, 260, 170}), scale);
        Rect e = image->extent();
        ASSERT_LT(e.width(), 20000) << scale;
        Rect r = image->regionOfInterest(0, e);
        EXPECT_TRUE(r.contains({101, 121, 259, 169})) << scale;
        // The far corner is seen at a corner of the extent at most, not beyond it.
        for (double angle = 0; angle < 6; angle += 0.1) {
            double d = std::hypot(e.width(), e.height()), f = 1 - scale + scale * std::sqrt(300 / d);
            double x = 150 + d * f * std::cos(angle), y = 150 + d * f * std::sin(angle);
            EXPECT_FALSE(x > 100 && x < 260 && y > 120 && y < 170) << scale << ' ' << angle;
        }
    }
}
