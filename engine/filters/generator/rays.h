// Light in rays around a centre, as CISunbeamsGenerator and CILenticularHaloGenerator make it.
#pragma once

#include "filter.h"
#include "kernel.h"
#include "noise.h"

namespace engine::generators {

/// Smooth noise over the direction and time, 0..1. `perTurn` rays go around, a power of 2.
SIMD_INLINE inline float rayAt(float turns, float time, int perTurn) {
    float place = turns * static_cast<float>(perTurn), step = simd::floor(place);
    float moment = simd::floor(time), t = smoothstep(place - step), s = smoothstep(time - moment);
    auto mask = static_cast<std::uint32_t>(perTurn - 1);
    auto k = static_cast<std::uint32_t>(static_cast<int>(step)),
         m = static_cast<std::uint32_t>(static_cast<int>(moment));
    float now = simd::mix(noiseAt(k & mask, m), noiseAt((k + 1) & mask, m), t);
    float next = simd::mix(noiseAt(k & mask, m + 1), noiseAt((k + 1) & mask, m + 1), t);
    return simd::mix(now, next, s);
}

/// The direction of a place in turns, 0..1, to 1e-5: atan by a polynomial (M. Abramowitz, I. Stegun,
/// "Handbook of Mathematical Functions", 1964, 4.4.49).
SIMD_INLINE inline float turnsOf(float x, float y) {
    float ax = simd::abs(x), ay = simd::abs(y);
    float q = simd::min(ax, ay) / simd::max(simd::max(ax, ay), 1e-9f), q2 = q * q;
    float a =
        q * (0.9998660f + q2 * (-0.3302995f + q2 * (0.1801410f + q2 * (-0.0851330f + q2 * 0.0208351f))));
    a *= static_cast<float>(0.5 / pi);
    a = ay > ax ? 0.25f - a : a;
    a = x < 0 ? 0.5f - a : a;
    return y < 0 ? 1 - a : a;
}

/// How bright the rays are in each direction: one half in the mean, spread by the striation's strength and
/// contrast.
struct Rays {
    float contrast, time;

    explicit Rays(const Inputs& in)
        : contrast(static_cast<float>(in.number("inputStriationStrength", 0, 100) *
                                      in.number("inputStriationContrast", 0, 100))),
          time(static_cast<float>(8 * in.number("inputTime", 0, 1))) {}
    SIMD_INLINE float at(float turns) const {
        float noise = 0.3f * rayAt(turns, time, 64) + 0.7f * rayAt(turns, time, 256);
        return simd::max(0.5f + contrast * (noise - 0.5f), 0);
    }
};

/// inputColor around inputCenter, up to `reach` away. Each component is as bright as amount(distance from the
/// centre, direction in turns, number of the component); the light is as opaque as its brightest component.
template <class Amount>
Image light(std::string name, const Inputs& in, double reach, Amount amount) {
    Point centre = in.point("inputCenter");
    return eachPlace(std::move(name), squareAround(centre, reach), From{centre},
                     [=, color = in.color("inputColor")](const RenderContext& context) {
                         return [=, full = pixel(context.color(color))](Position p) SIMD_INLINE {
                             float distance = simd::sqrt(p.x * p.x + p.y * p.y), turns = turnsOf(p.x, p.y);
                             float red = simd::unit(amount(distance, turns, 0.f));
                             float green = simd::unit(amount(distance, turns, 1.f));
                             float blue = simd::unit(amount(distance, turns, 2.f));
                             return Pixel{full.r * red, full.g * green, full.b * blue,
                                          full.a * simd::max(simd::max(red, green), blue)};
                         };
                     });
}

} // namespace engine::generators
