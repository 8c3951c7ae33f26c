// CIToneCurve: brightness along a curve through five points.
#include "filter.h"
#include "kernel.h"

#include <cmath>

namespace engine {

namespace {

constexpr int points = 5;

/// A cubic between each two points, y0 + t (c1 + t (c2 + t c3)) with t = x - x0.
struct Curve {
    std::array<float, points> x, y;
    std::array<float, points - 1> c1, c2, c3;
};

/// The natural cubic spline: its second derivative has no jumps, and is 0 at both ends.
Curve through(std::array<Point, points> p) {
    std::sort(p.begin(), p.end(), [](const Point& a, const Point& b) { return a.x < b.x; });
    // A step is as steep as a table of 1024 entries could show it.
    for (int i = 1; i < points; ++i) p[i].x = std::max(p[i].x, p[i - 1].x + 1. / 1024);
    double h[points - 1], d[points - 1];
    for (int i = 0; i < points - 1; ++i) {
        h[i] = p[i + 1].x - p[i].x;
        d[i] = (p[i + 1].y - p[i].y) / h[i];
    }
    // The second derivatives m, from h[i-1] m[i-1] + 2 (h[i-1] + h[i]) m[i] + h[i] m[i+1] = 6 (d[i] -
    // d[i-1]).
    double m[points] = {}, pivot[points] = {}, right[points] = {};
    for (int i = 1; i < points - 1; ++i) {
        double above = i > 1 ? h[i - 1] / pivot[i - 1] : 0;
        pivot[i] = 2 * (h[i - 1] + h[i]) - above * h[i - 1];
        right[i] = 6 * (d[i] - d[i - 1]) - above * right[i - 1];
    }
    for (int i = points - 2; i > 0; --i) m[i] = (right[i] - h[i] * m[i + 1]) / pivot[i];
    Curve curve;
    for (int i = 0; i < points; ++i) {
        curve.x[i] = static_cast<float>(p[i].x);
        curve.y[i] = static_cast<float>(p[i].y);
    }
    for (int i = 0; i < points - 1; ++i) {
        curve.c1[i] = static_cast<float>(d[i] - h[i] * (2 * m[i] + m[i + 1]) / 6);
        curve.c2[i] = static_cast<float>(m[i] / 2);
        curve.c3[i] = static_cast<float>((m[i + 1] - m[i]) / (6 * h[i]));
    }
    return curve;
}

/// Each component goes through the curve in its coded form; beyond the ends it stays at their height. Where
/// the curve swings beyond its points it stays within them or 0..1, whichever is wider. (That it is a natural
/// spline of coded colours is fitted to Core Image's pictures.)
Image build(const Inputs& in) {
    constexpr const char* keys[] = {"inputPoint0", "inputPoint1", "inputPoint2", "inputPoint3",
                                    "inputPoint4"};
    std::array<Point, points> p;
    bool straight = true;
    for (int i = 0; i < points; ++i) {
        Point given = in.point(keys[i]);
        p[i] = {std::clamp(given.x, -16.0, 16.0), std::clamp(given.y, -16.0, 16.0)};
        straight = straight && p[i].x == p[i].y;
    }
    // A curve that changes nothing does not clip either.
    if (straight) return in.image("inputImage");
    float low = 0, high = 1;
    for (const Point& point : p) {
        low = std::min(low, static_cast<float>(point.y));
        high = std::max(high, static_cast<float>(point.y));
    }
    return eachStraightColor(in.image("inputImage"), "tone curve", [=, k = through(p)](float v) SIMD_INLINE {
        float x = simd::clamp(simd::linearToSrgb(v), k.x[0], k.x[4]);
        bool past1 = x > k.x[1], past2 = x > k.x[2], past3 = x > k.x[3];
        auto of = [=](const auto& list) SIMD_INLINE {
            return past3 ? list[3] : past2 ? list[2] : past1 ? list[1] : list[0];
        };
        float t = x - of(k.x);
        float y = of(k.y) + t * (of(k.c1) + t * (of(k.c2) + t * of(k.c3)));
        return simd::srgbToLinear(simd::clamp(y, low, high));
    });
}

InputInfo pointInput(const std::string& number, double value) {
    return vectorInput("inputPoint" + number, "Point " + number, "Offset", {value, value},
                       Numbers{value, value});
}

const Registrar filter{{"CIToneCurve",
                        "Tone Curve",
                        "Changes brightness along a curve through five points.",
                        fitted("a natural cubic spline of coded colours"),
                        "10.7",
                        categories("ColorAdjustment Video StillImage Interlaced NonSquarePixels BuiltIn"),
                        {imageInput(), pointInput("0", 0), pointInput("1", 0.25), pointInput("2", 0.5),
                         pointInput("3", 0.75), pointInput("4", 1)},
                        build}};

} // namespace

} // namespace engine
