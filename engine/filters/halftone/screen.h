// What printed pictures share: patterns whose values are spread evenly over 0..1, and the comparison of light
// with them, so that as much of a screen is white as there is light. (Core Image does not publish its
// patterns; these are our own.)
#pragma once

#include "filter.h"
#include "kernel.h"

#include <cmath>

namespace engine::halftone {

/// 0 at even and 1 at odd numbers.
SIMD_INLINE inline float wave(float x) { return simd::abs(x - 2 * simd::floor(x * 0.5f + 0.5f)); }

/// A pattern of dots, of a place in units of half their distance: white grows as dots, and black is left as
/// dots where it has grown together. The sum of two waves is made even again by its own distribution.
struct Dots {
    SIMD_INLINE static float at(Position p) {
        float s = 0.5f * (wave(p.x) + wave(p.y)), t = 1 - s;
        return s < 0.5f ? 2 * s * s : 1 - 2 * t * t;
    }
};

/// Where a pattern lies, and how soft its edges are.
struct Screen {
    double width, u0, v0, cosine, sine;
    float soft;

    explicit Screen(const Inputs& in, double turn = 0)
        : width(in.number("inputWidth", 1, 1e6)), u0(in.point("inputCenter").x),
          v0(in.point("inputCenter").y) {
        double angle = in.number("inputAngle", -1e6, 1e6) + turn;
        cosine = std::cos(angle) * 2 / width, sine = std::sin(angle) * 2 / width;
        // An edge is about a pixel wide at least, which keeps it smooth.
        soft = static_cast<float>(std::max(1 - in.number("inputSharpness", 0, 1), std::min(1.0, 2 / width)));
    }

    /// A row as patterns see it. One that repeats after 2 in each direction is read near its origin.
    SlantedRow row(int x, int y, bool repeats = true) const {
        double px = x + 0.5 - u0, py = y + 0.5 - v0;
        auto near = [=](double v) { return static_cast<float>(repeats ? v - 2 * std::floor(v / 2) : v); };
        return {near(px * cosine + py * sine), static_cast<float>(cosine), near(py * cosine - px * sine),
                static_cast<float>(-sine)};
    }

    /// 1 where there is more light than the pattern asks for, with a ramp between. Where the ramp would reach
    /// beyond the pattern's values it is moved so that its mean stays the light; black and white stay free of
    /// the pattern.
    SIMD_INLINE static float inkless(float light, float pattern, float soft) {
        float half = 0.5f * soft, dark = simd::sqrt(2 * soft * light);
        float bright = 1 + soft - simd::sqrt(2 * soft * (1 - light));
        float middle = light < half ? dark : light > 1 - half ? bright : light + half;
        return simd::unit((middle - pattern) / soft);
    }
};

inline InputInfo centerInput() { return vectorInput("inputCenter", "Center", "Position", {150, 150}); }
inline InputInfo angleInput() {
    return numberInput("inputAngle", "Angle", "Angle",
                       {.value = 0, .identity = 0, .sliderMin = -pi, .sliderMax = pi});
}
inline std::vector<std::string> screenCategories() {
    return categories("HalftoneEffect Video StillImage BuiltIn");
}

} // namespace engine::halftone
