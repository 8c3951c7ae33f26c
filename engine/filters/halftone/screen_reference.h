// Patterns and ramps of halftones in double precision, to compare with.
#pragma once

#include "reference.h"

namespace reference {

inline double wave(double x) { return std::acos(std::cos(x * M_PI)) / M_PI; } // 0 at even, 1 at odd numbers

inline double dots(double u, double v) {
    double s = (wave(u) + wave(v)) / 2;
    return s < 0.5 ? 2 * s * s : 1 - 2 * (1 - s) * (1 - s);
}

/// A ramp around the value of a pattern at which so much light of 0..1 is left on average.
inline double white(double light, double pattern, double soft) {
    auto mean = [=](double top) { // of clamp((top - pattern) / soft), over all patterns
        double full = std::max(0.0, std::min(1.0, top - soft)), end = std::min(1.0, top);
        return full + (end - full) * ((top - full) + (top - end)) / (2 * soft);
    };
    double low = 0, high = 1 + soft;
    for (int i = 0; i < 60; ++i) (mean((low + high) / 2) < light ? low : high) = (low + high) / 2;
    return std::clamp((low - pattern) / soft, 0.0, 1.0);
}

/// A pattern's value at a pixel, in a screen of this width, turned by 0.3 (and more) around (12, 7).
inline double at(const std::function<double(double, double)>& pattern, int x, int y, double width,
                 double turn = 0) {
    double px = x + 0.5 - 12, py = y + 0.5 - 7, angle = 0.3 + turn;
    return pattern((px * std::cos(angle) + py * std::sin(angle)) * 2 / width,
                   (py * std::cos(angle) - px * std::sin(angle)) * 2 / width);
}

inline Values screen(const Image& image, double width) {
    return {
        {"inputImage", image}, {"inputCenter", Numbers{12, 7}}, {"inputAngle", 0.3}, {"inputWidth", width}};
}

inline Pixel straight(Pixel q) {
    for (int c = 0; c < 3; ++c) q[c] = q[3] > 0 ? q[c] / q[3] : 0;
    return q;
}

inline Pixel mean(const Picture& p) {
    Pixel sum{};
    for (const Pixel& q : p.pixels)
        for (int c = 0; c < 4; ++c) sum[c] += q[c] / static_cast<double>(p.pixels.size());
    return sum;
}

// A pattern's edge is steep: its place in single precision times 1 / soft.
constexpr double patternError = 2e-4;

} // namespace reference
