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

double endSlope(double h0, double h1, double d0, double d1) {
    double m = ((2 * h0 + h1) * d0 - h0 * d1) / (h0 + h1);
    if (m * d0 <= 0) return 0;
    return d0 * d1 < 0 && std::abs(m) > 3 * std::abs(d0) ? 3 * d0 : m;
}

/// Fritsch and Butland's cubic interpolation ("A method for constructing local monotone piecewise cubic
/// interpolants", 1984): smooth, and never beyond its points.
Curve through(std::array<Point, points> p) {
    std::sort(p.begin(), p.end(), [](const Point& a, const Point& b) { return a.x < b.x; });
    // A step is as steep as a table of 1024 entries could show it.
    for (int i = 1; i < points; ++i) p[i].x = std::max(p[i].x, p[i - 1].x + 1. / 1024);
    double h[points - 1], d[points - 1], m[points];
    for (int i = 0; i < points - 1; ++i) {
        h[i] = p[i + 1].x - p[i].x;
        d[i] = (p[i + 1].y - p[i].y) / h[i];
    }
    m[0] = endSlope(h[0], h[1], d[0], d[1]);
    m[4] = endSlope(h[3], h[2], d[3], d[2]);
    for (int i = 1; i < points - 1; ++i) {
        double w0 = 2 * h[i] + h[i - 1], w1 = h[i] + 2 * h[i - 1];
        m[i] = d[i - 1] * d[i] <= 0 ? 0 : (w0 + w1) / (w0 / d[i - 1] + w1 / d[i]);
    }
    Curve curve;
    for (int i = 0; i < points; ++i) {
        curve.x[i] = static_cast<float>(p[i].x);
        curve.y[i] = static_cast<float>(p[i].y);
    }
    for (int i = 0; i < points - 1; ++i) {
        curve.c1[i] = static_cast<float>(m[i]);
        curve.c2[i] = static_cast<float>((3 * d[i] - 2 * m[i] - m[i + 1]) / h[i]);
        curve.c3[i] = static_cast<float>((m[i] + m[i + 1] - 2 * d[i]) / (h[i] * h[i]));
    }
    return curve;
}

/// Each component goes through the curve in its coded form, as eyes see it; beyond the ends it stays at their
/// height. (The public definition tells of a spline through the points; which one is our choice.)
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
    return eachStraightColor(in.image("inputImage"), "tone curve", [k = through(p)](float v) SIMD_INLINE {
        float x = simd::clamp(simd::linearToSrgb(v), k.x[0], k.x[4]);
        bool past1 = x > k.x[1], past2 = x > k.x[2], past3 = x > k.x[3];
        auto of = [=](const auto& list) SIMD_INLINE {
            return past3 ? list[3] : past2 ? list[2] : past1 ? list[1] : list[0];
        };
        float t = x - of(k.x);
        return simd::srgbToLinear(of(k.y) + t * (of(k.c1) + t * (of(k.c2) + t * of(k.c3))));
    });
}

InputInfo pointInput(const std::string& number, double value) {
    return vectorInput("inputPoint" + number, "Point " + number, "Offset", {value, value},
                       Numbers{value, value});
}

const Registrar filter{{"CIToneCurve",
                        "Tone Curve",
                        "Changes brightness along a curve through five points.",
                        "10.7",
                        categories("ColorAdjustment Video StillImage Interlaced NonSquarePixels BuiltIn"),
                        {imageInput(), pointInput("0", 0), pointInput("1", 0.25), pointInput("2", 0.5),
                         pointInput("3", 0.75), pointInput("4", 1)},
                        build}};

} // namespace

} // namespace engine
