// What lenses of glass that lie on a picture share.
#pragma once

#include "filter.h"
#include "warps.h"

namespace engine::distortion {

/// Where light comes from that meets a half cylinder (or the like) of radius 1 from above, `q` beside its
/// axis: by how much nearer to the axis, after Snell's law.
SIMD_INLINE inline float bent(float q, float perRefraction) {
    float sine = simd::abs(q), cosine = simd::sqrt(1 - q * q);
    float sine2 = simd::min(sine * perRefraction, 1), cosine2 = simd::sqrt(1 - sine2 * sine2);
    float across = sine * cosine2 - cosine * sine2, along = cosine * cosine2 + sine * sine2;
    return simd::copySign(cosine * across / simd::max(along, 1e-6f), q);
}

/// How far light comes from beyond a lens: not at all, but where it leaves for thinner glass (a refraction
/// below 1).
inline double beyondLens(double radius, double refraction) {
    return refraction < 1 ? radius / refraction : 0;
}

inline double refraction(const Inputs& in) { return in.number("inputRefraction", 0.1, 100); }

inline InputInfo refractionInput() {
    return numberInput("inputRefraction", "Refraction", "Scalar",
                       {.value = 1.7, .identity = 1, .min = 0, .sliderMin = 0, .sliderMax = 5});
}

} // namespace engine::distortion
