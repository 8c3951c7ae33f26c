// CIHoleDistortion, against a reference in double precision and a picture of Core Image's.
#include "distorted.h"

using namespace reference;

TEST(CIHoleDistortion, PushesOutwards) {
    Picture p = noise(60, 60, 82);
    Image image = distorted("CIHoleDistortion", p, {{"inputRadius", 11.0}});
    Picture expected = comesFrom(p, [](Point q) {
        double d = std::hypot(q.x, q.y), f = d > 11 ? 1 - 121 / (d * d) : 0;
        return Point{q.x * f, q.y * f};
    });
    for (int y = -40; y < 100; ++y)
        for (int x = -40; x < 100; ++x)
            for (double& v : expected.at(x, y))
                v *= std::clamp(std::hypot(x + 0.5 - centre.x, y + 0.5 - centre.y) - 11, 0.0, 1.0);
    // The extent cuts at where the picture's edge goes, and interpolation shows half a pixel beyond that.
    Rect inside = image->extent().integral();
    for (int y = -40; y < 100; ++y)
        for (int x = -40; x < 100; ++x)
            if (!inside.contains({double(x), double(y), x + 1.0, y + 1.0})) expected.at(x, y) = {};
    EXPECT_LT(error(image, expected), distortionError);
    EXPECT_LT(tileError(image), distortionError);
}

// A picture of 500 by 267 pixels with a radius of 85: Core Image's result is 559 by 351 pixels, and its edges
// and the hole's lie at these places.
TEST(CIHoleDistortion, HasTheEdgesOfCoreImagesPicture) {
    Values values{{"inputRadius", 85.0}};
    values["inputImage"] = crop(constant({1, 1, 1, 1}), {0, 0, 500, 267});
    EXPECT_EQ(filter("CIHoleDistortion", values)->extent().integral(), (Rect{-39, -39, 520, 312}));
    const struct {
        double y, left, from, to, right;
    } rows[] = {{224.5, -34, 108, 192, 519}, {171.5, -38, 67, 233, 519}, {101.5, -36, 80, 220, 519}};
    for (auto [y, left, from, to, right] : rows) {
        for (double x : {left - 2, from + 4, to - 4, right + 2})
            EXPECT_LT(alphaAt("CIHoleDistortion", 500, 267, values, x, y), 0.05) << x << ' ' << y;
        for (double x : {left + 2, from - 4, to + 4, right - 2})
            EXPECT_GT(alphaAt("CIHoleDistortion", 500, 267, values, x, y), 0.95) << x << ' ' << y;
    }
    // Pixels by the hole's edge, and their alpha in the picture, of 255.
    const std::pair<double, double> edge[] = {{84.8, 0}, {85.25, 62}, {85.5, 132}, {85.75, 188}, {86.2, 255}};
    for (auto [distance, alpha] : edge) {
        values["inputCenter"] = Numbers{235.5 - distance, 150.5};
        EXPECT_NEAR(alphaAt("CIHoleDistortion", 500, 267, values, 235.5, 150.5) * 255, alpha, 6) << distance;
    }
}
