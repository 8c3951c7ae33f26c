// CICrystallize and CIPointillize, by what a ramp becomes in them.
#include "reference.h"

using namespace reference;

namespace {

constexpr double radius = 6;

/// A ramp shows what a crystal's mean is taken from: its colour is the middle of its place.
Image inCells(const char* name) {
    Picture ramp = filled(0, 0, 120, 120, [](int x, int y) { return Pixel{x / 120., y / 120., 0.5, 1}; });
    return filter(name,
                  {{"inputImage", imageOf(ramp)}, {"inputRadius", radius}, {"inputCenter", Numbers{3, 4}}});
}

} // namespace

TEST(CICrystallize, MakesMeansOfConnectedPlaces) {
    Image image = inCells("CICrystallize");
    Picture got = rendered(image, 30, 30, 60, 60);
    EXPECT_LT(difference(inTiles(image, 30, 30, 60, 60), got), 1e-6);
    std::map<std::pair<long, long>, std::array<double, 3>> crystals; // by colour: sums of x and y, count
    for (int y = 30; y < 90; ++y)
        for (int x = 30; x < 90; ++x) {
            Pixel q = got.get(x, y);
            EXPECT_NEAR(q[3], 1, 1e-6);
            EXPECT_NEAR(q[2], 0.5, 1e-6);
            EXPECT_LT(std::hypot(q[0] * 120 - x, q[1] * 120 - y), 4 * radius) << x << ' ' << y;
            auto& sum = crystals[{std::lround(q[0] * 1e6), std::lround(q[1] * 1e6)}];
            sum[0] += x, sum[1] += y, sum[2] += 1;
        }
    int whole = 0;
    for (const auto& [color, sum] : crystals) {
        double x = color.first * 120e-6, y = color.second * 120e-6;
        if (x < 50 || x > 70 || y < 50 || y > 70) continue;
        EXPECT_NEAR(sum[0] / sum[2], x, 0.01);
        EXPECT_NEAR(sum[1] / sum[2], y, 0.01);
        ++whole;
    }
    EXPECT_GT(whole, 0);
    // As many as there are discs of that radius in the area, and those cut by its edges.
    double discs = 3600 / (3.14159 * radius * radius);
    EXPECT_GT(crystals.size(), discs * 0.8);
    EXPECT_LT(crystals.size(), discs * 2);
}

TEST(CIPointillize, CutsCrystalsToDots) {
    Picture crystals = rendered(inCells("CICrystallize"), 30, 30, 60, 60);
    Picture dots = rendered(inCells("CIPointillize"), 30, 30, 60, 60);
    double area = 0;
    for (int y = 30; y < 90; ++y)
        for (int x = 30; x < 90; ++x) {
            double a = dots.get(x, y)[3];
            for (int c = 0; c < 4; ++c) EXPECT_NEAR(dots.get(x, y)[c], a * crystals.get(x, y)[c], 1e-6);
            area += a / 3600;
        }
    EXPECT_GT(area, 0.4);
    EXPECT_LT(area, 0.95);
}
