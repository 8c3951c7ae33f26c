// Rays around a centre, as suns, halos and flashes have them.
#pragma once

#include "kernel.h"
#include "noise.h"

namespace engine {

/// White light that differs by direction: the noise read along a circle (fitted to Core Image's pictures).
struct Striation {
    float strength, contrast, x, y, radius;

    /// From the inputs of the filter; the circle in the noise has this centre and radius.
    Striation(const Inputs& in, Point centre, double radius)
        : strength(static_cast<float>(in.number("inputStriationStrength", 0, 100))),
          contrast(static_cast<float>(in.number("inputStriationContrast", 0, 100))),
          x(static_cast<float>(centre.x)), y(static_cast<float>(centre.y)),
          radius(static_cast<float>(radius)) {}

    /// For a direction of length 1, where the noise is `noise(x, y)`.
    template <class Noise>
    SIMD_INLINE float at(Position direction, Noise noise) const {
        float n = noise(x + radius * direction.x, y + radius * direction.y);
        return strength * ((n - 0.5f) * contrast + 0.5f);
    }
};

/// How far a position is from the origin and in which direction; the origin itself counts as beside it.
struct Polar {
    float distance;
    Position direction;
};
SIMD_INLINE inline Polar polar(Position p) {
    float distance = simd::max(simd::sqrt(p.x * p.x + p.y * p.y), 0.01f);
    return {distance, {p.x / distance, p.y / distance}};
}

/// Coloured light whose alpha is its brightest component, which may exceed 1.
SIMD_INLINE inline Pixel light(float r, float g, float b) {
    r = simd::max(r, 0), g = simd::max(g, 0), b = simd::max(b, 0);
    return {r, g, b, simd::max(r, simd::max(g, b))};
}

} // namespace engine
