// CIToneCurve, against a reference in double precision.
#include "reference.h"

using namespace reference;

namespace {

/// Cubic Hermite interpolation with Fritsch and Butland's slopes.
double curveAt(const std::vector<Point>& p, double x) {
    auto slope = [&](std::size_t i) { return (p[i + 1].y - p[i].y) / (p[i + 1].x - p[i].x); };
    auto width = [&](std::size_t i) { return p[i + 1].x - p[i].x; };
    auto tangent = [&](std::size_t i) {
        auto atEnd = [&](std::size_t near, std::size_t far) {
            double h0 = width(near), h1 = width(far), d0 = slope(near), d1 = slope(far);
            double m = d0 + h0 / (h0 + h1) * (d0 - d1);
            if (m * d0 <= 0) return 0.0;
            return d0 * d1 < 0 ? std::copysign(std::min(std::abs(m), 3 * std::abs(d0)), d0) : m;
        };
        if (i == 0) return atEnd(0, 1);
        if (i == 4) return atEnd(3, 2);
        double before = slope(i - 1), after = slope(i);
        if (before * after <= 0) return 0.0;
        double share = (width(i - 1) + 2 * width(i)) / (3 * (width(i - 1) + width(i)));
        return before * after / (share * after + (1 - share) * before);
    };
    if (x <= p[0].x) return p[0].y;
    if (x >= p[4].x) return p[4].y;
    std::size_t i = 0;
    while (x > p[i + 1].x) ++i;
    double h = width(i), t = (x - p[i].x) / h;
    return (1 + 2 * t) * (1 - t) * (1 - t) * p[i].y + t * (1 - t) * (1 - t) * h * tangent(i) +
           t * t * (3 - 2 * t) * p[i + 1].y + t * t * (t - 1) * h * tangent(i + 1);
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

TEST(CIToneCurve, NeverLeavesItsPoints) {
    // The points of a step, where other splines swing.
    std::vector<Point> step{{0, 0.1}, {0.45, 0.1}, {0.5, 0.5}, {0.55, 0.9}, {1, 0.9}};
    Picture ramp = filled(0, 0, 400, 1, [](int x, int) {
        double v = linear(x / 399.);
        return Pixel{v, v, v, 1};
    });
    Picture got = rendered(toneCurve(imageOf(ramp), step), 0, 0, 400, 1);
    double last = 0;
    for (int x = 0; x < 400; ++x) {
        double v = coded(got.get(x, 0)[0]);
        ASSERT_GT(v, 0.1 - 1e-5);
        ASSERT_LT(v, 0.9 + 1e-5);
        ASSERT_GE(v, last - 1e-5) << x;
        last = v;
    }
    EXPECT_GT(last, 0.89);
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
