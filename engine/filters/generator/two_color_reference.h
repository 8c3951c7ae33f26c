// What the tests of generators compare with: a mix of two colours.
#pragma once

#include "reference.h"

namespace reference {

constexpr Color firstColor{1, 0.5, 0, 1}, secondColor{0, 0.2, 0.8, 0.5};

/// From the first colour at 0 to the second at 1, as premultiplied light.
inline Pixel mixed(double t) {
    t = std::clamp(t, 0.0, 1.0);
    auto light = [](const Color& c) {
        return Pixel{linear(c.r) * c.a, linear(c.g) * c.a, linear(c.b) * c.a, c.a};
    };
    Pixel from = light(firstColor), to = light(secondColor), out;
    for (int c = 0; c < 4; ++c) out[c] = from[c] + t * (to[c] - from[c]);
    return out;
}

} // namespace reference
