// The rays that CISunbeamsGenerator and CILenticularHaloGenerator have in common.
#pragma once

#include "filter.h"
#include "striation.h"

#include <cmath>

namespace engine::generators {

/// Rays that turn with the time: a circle of radius 50 in the red noise, whose centre goes around (128, 128)
/// once, 30 away.
struct Rays {
    Striation striation;
    NoisePlane red = noisePlane(0);

    explicit Rays(const Inputs& in) : striation(in, centre(2 * pi * in.number("inputTime", -1e3, 1e3)), 50) {}
    SIMD_INLINE float at(Position direction) const {
        return striation.at(direction, [this](float x, float y) SIMD_INLINE { return red.at(x, y); });
    }

  private:
    static Point centre(double angle) { return {128 + 30 * std::cos(angle), 128 + 30 * std::sin(angle)}; }
};

} // namespace engine::generators
