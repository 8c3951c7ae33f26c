// CIBumpDistortion, against a reference in double precision and a picture of Core Image's.
#include "distorted.h"

using namespace reference;

TEST(CIBumpDistortion, RaisesAndPressesTheInsideOfACircle) {
    Picture p = noise(60, 60, 43);
    for (double scale : {0.6, -0.8}) {
        Image image = distorted("CIBumpDistortion", p, {{"inputRadius", 21.0}, {"inputScale", scale}});
        auto place = [=](Point q) {
            double f = 1 - scale * smoothstep(1 - std::hypot(q.x, q.y) / 21);
            return Point{f * q.x, f * q.y};
        };
        EXPECT_LT(error(image, comesFrom(p, place)), distortionError) << scale;
        EXPECT_LT(tileError(image), distortionError) << scale;
    }
}

// Where edges of a picture 638 pixels wide lie in the row through the centre, before and after Core Image.
TEST(CIBumpDistortion, MovesEdgesAsFarAsCoreImagesPicture) {
    const struct {
        double before, after;
    } edges[] = {{150, 148}, {319, 319},   {330, 340.5}, {349, 370.5}, {370, 394.5}, {389, 413.5}, {404, 426},
                 {423, 441}, {449, 460.5}, {480, 484},   {495, 496},   {461, 469.5}, {525, 525}};
    Picture ramp = filled(0, 0, 638, 475, [](int x, int) { return Pixel{(x + 0.5) / 638, 0, 0, 1}; });
    Image image = filter("CIBumpDistortion", {{"inputImage", imageOf(ramp)},
                                              {"inputCenter", Numbers{319, 237.5}},
                                              {"inputRadius", 190.0},
                                              {"inputScale", 0.5}});
    Picture row = rendered(image, 0, 237, 638, 1);
    for (auto [before, after] : edges) EXPECT_NEAR(bilinear(row, after, 237.5)[0] * 638, before, 1) << before;
}
