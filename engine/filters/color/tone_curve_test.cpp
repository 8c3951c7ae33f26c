// CIToneCurve, against a reference in double precision.
#include "reference.h"

using namespace reference;

namespace {

/// The natural spline: of all curves through the points the one that bends least. Its bends (second
/// derivatives) are found by relaxation.
double curveAt(const std::vector<Point>& p, double x) {
    std::array<double, 5> bend{};
    auto width = [&](int i) { return p[i + 1].x - p[i].x; };
    auto slope = [&](int i) { return (p[i + 1].y - p[i].y) / width(i); };
    for (int turn = 0; turn < 200; ++turn)
        for (int i = 1; i < 4; ++i)
            bend[i] = (6 * (slope(i) - slope(i - 1)) - width(i - 1) * bend[i - 1] - width(i) * bend[i + 1]) /
                      (2 * (width(i - 1) + width(i)));
    if (x <= p[0].x) return p[0].y;
    if (x >= p[4].x) return p[4].y;
    int i = 0;
    while (x > p[i + 1].x) ++i;
    double h = width(i), a = (p[i + 1].x - x) / h, b = 1 - a;
    double y =
        a * p[i].y + b * p[i + 1].y + ((a * a * a - a) * bend[i] + (b * b * b - b) * bend[i + 1]) * h * h / 6;
    return std::clamp(y, 0.0, 1.0);
}

Image toneCurve(const Image& image, const std::vector<Point>& p) {
    Values values{{"inputImage", image}};
    for (int i = 0; i < 5; ++i) values["inputPoint" + std::to_string(i)] = Numbers{p[i].x, p[i].y};
    return filter("CIToneCurve", values);
}

} // namespace

TEST(CIToneCurve, IsASmoothCurveOfCodedColour) {
    Picture p = noise(61, 17, 32);
    const std::vector<std::vector<Point>> curves{
        {{0, 0}, {0.25, 0.35}, {0.5, 0.65}, {0.75, 0.85}, {1, 1}},
        {{0.08, 0}, {0.2, 0.1}, {0.5, 0.5}, {0.6, 0.8}, {0.9, 0.95}},
        {{0, 1}, {0.25, 0.3}, {0.5, 0.6}, {0.75, 0.2}, {1, 0}}, // up and down
        {{0, 0.2}, {0.3, 0.2}, {0.5, 0.2}, {0.75, 0.9}, {1, 0.7}},
    };
    for (const auto& curve : curves) {
        Picture expected = mapped(p, [&](Pixel q) {
            for (int c = 0; c < 3; ++c) q[c] = linear(curveAt(curve, coded(q[c])));
            return q;
        });
        EXPECT_LT(error(toneCurve(imageOf(p), curve), expected), floatError);
        auto shuffled = curve;
        std::swap(shuffled[1], shuffled[3]);
        EXPECT_LT(error(toneCurve(imageOf(p), shuffled), expected), floatError) << "the order of points";
    }
}

TEST(CIToneCurve, StaysWithinItsRange) {
    // A step, around which a spline swings.
    std::vector<Point> step{{0, 0.1}, {0.49, 0.1}, {0.5, 0.5}, {0.51, 0.9}, {1, 0.9}};
    Picture ramp = filled(0, 0, 400, 1, [](int x, int) {
        double v = linear(x / 399.);
        return Pixel{v, v, v, 1};
    });
    Picture got = rendered(toneCurve(imageOf(ramp), step), 0, 0, 400, 1);
    for (int x = 0; x < 400; ++x) {
        ASSERT_GE(got.get(x, 0)[0], 0) << x;
        ASSERT_LE(got.get(x, 0)[0], 1 + floatError) << x;
    }
    EXPECT_NEAR(coded(got.get(0, 0)[0]), 0.1, floatError);
    EXPECT_NEAR(coded(got.get(399, 0)[0]), 0.9, floatError);
}

TEST(CIToneCurve, MakesAStepOfPointsAboveEachOther) {
    Picture p = filled(0, 0, 2, 1, [](int x, int) {
        double v = linear(x ? 0.6 : 0.4);
        return Pixel{v, v, v, 1};
    });
    Picture got =
        rendered(toneCurve(imageOf(p), {{0, 0}, {0.5, 0}, {0.5, 0.5}, {0.5, 1}, {1, 1}}), 0, 0, 2, 1);
    EXPECT_NEAR(got.get(0, 0)[0], 0, floatError);
    EXPECT_NEAR(got.get(1, 0)[0], 1, floatError);
}

TEST(CIToneCurve, StandardLeavesThePicture) {
    Image image = imageOf(noise(8, 8, 33));
    EXPECT_EQ(filter("CIToneCurve", {{"inputImage", image}}), image);
}
