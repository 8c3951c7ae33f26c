// CICrystallize and CIPointillize, by what a ramp becomes in them.
#include "reference.h"

using namespace reference;

namespace {

constexpr double radius = 6;

/// A ramp shows where a crystal's colour is taken from.
Image inCells(const char* name) {
    Picture ramp = filled(0, 0, 120, 120, [](int x, int y) {
        return Pixel{(x + 0.5) / 120, (y + 0.5) / 120, 0.5, 1};
    });
    return filter(name,
                  {{"inputImage", imageOf(ramp)}, {"inputRadius", radius}, {"inputCenter", Numbers{3, 4}}});
}

/// The point that a pixel's colour was taken from.
Point point(const Pixel& q) { return {q[0] * 120, q[1] * 120}; }

} // namespace

TEST(CICrystallize, ShowsThePictureAtTheNearestPoint) {
    Image image = inCells("CICrystallize");
    Picture got = rendered(image, 30, 30, 60, 60);
    EXPECT_LT(difference(inTiles(image, 30, 30, 60, 60), got), 1e-5);
    std::map<std::pair<long, long>, Point> points; // by their colours, which rounding leaves apart a little
    for (const Pixel& q : got.pixels) {
        EXPECT_NEAR(q[3], 1, 1e-6);
        EXPECT_NEAR(q[2], 0.5, 1e-6);
        points[{std::lround(q[0] * 1e4), std::lround(q[1] * 1e4)}] = point(q);
    }
    for (int y = 30; y < 90; ++y)
        for (int x = 30; x < 90; ++x) {
            auto away = [&](Point p) { return std::hypot(p.x - x - 0.5, p.y - y - 0.5); };
            double own = away(point(got.get(x, y)));
            for (const auto& [color, other] : points) ASSERT_LT(own, away(other) + 1e-3) << x << ' ' << y;
        }
    // As many as there are discs of that radius in the area, and those cut by its edges.
    double discs = 3600 / (3.14159 * radius * radius);
    EXPECT_GT(points.size(), discs * 0.8);
    EXPECT_LT(points.size(), discs * 2);
}

TEST(CIPointillize, CutsCrystalsToDots) {
    Picture crystals = rendered(inCells("CICrystallize"), 30, 30, 60, 60);
    Picture dots = rendered(inCells("CIPointillize"), 30, 30, 60, 60);
    for (int y = 30; y < 90; ++y)
        for (int x = 30; x < 90; ++x) {
            Point p = point(crystals.get(x, y));
            double a = std::clamp(radius + 0.5 - std::hypot(p.x - x - 0.5, p.y - y - 0.5), 0.0, 1.0);
            for (int c = 0; c < 4; ++c)
                EXPECT_NEAR(dots.get(x, y)[c], a * crystals.get(x, y)[c], 1e-4) << x << ' ' << y;
        }
}
