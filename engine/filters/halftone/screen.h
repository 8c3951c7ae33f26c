// What printed pictures share: patterns between 0 and 1, and the comparison of light with them.
#pragma once

#include "filter.h"
#include "kernel.h"

#include <cmath>

namespace engine::halftone {

/// 0 at whole numbers, 1 half-way between them.
SIMD_INLINE inline float triangle(float x) { return 2 * simd::abs(x - simd::floor(x + 0.5f)); }

/// A pattern of dots, of a place in units of their distance.
struct Dots {
    SIMD_INLINE static float at(Position p) {
        constexpr float turn = static_cast<float>(2 * pi);
        return 0.5f + 0.17375f * (simd::sin(turn * p.x) + simd::sin(turn * p.y));
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
        cosine = std::cos(angle) / width, sine = std::sin(angle) / width;
        // The sharpest edges are steps, but for the last thousandth.
        soft = static_cast<float>(std::max(1 - in.number("inputSharpness", 0, 1), 1e-3));
    }

    /// A row as patterns see it. One that repeats after 1 in each direction is read near its origin.
    SlantedRow row(int x, int y, bool repeats = true) const {
        int anchor = anchorOf(x);
        double px = anchor + 0.5 - u0, py = y + 0.5 - v0;
        auto near = [=](double v) { return static_cast<float>(repeats ? v - std::floor(v) : v); };
        return {near(px * cosine + py * sine), static_cast<float>(cosine), near(py * cosine - px * sine),
                static_cast<float>(-sine), x - anchor};
    }

    /// 1 where there is more light than the pattern asks for, 0 where there is less, with a ramp between.
    SIMD_INLINE static float inkless(float light, float pattern, float soft) {
        return simd::unit((light - pattern) / soft + 0.5f);
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
