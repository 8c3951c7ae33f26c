// Turning the inside of a circle, as CITwirlDistortion and CIVortexDistortion do.
#pragma once

#include "filter.h"
#include "warps.h"

namespace engine::distortion {

/// Turns a pixel at the distance d from the centre by angle * falloff(1 - d / radius, d), which has to be 0
/// at the rim. The result covers the whole circle, as in Core Image's pictures.
template <class Falloff>
Image turned(const Inputs& in, Falloff falloff) {
    Image image = in.image("inputImage");
    Point centre = in.point("inputCenter");
    double radius = in.number("inputRadius", 0, 1e6), angle = in.number("inputAngle", -1000, 1000);
    if (radius < 0.5 || angle == 0) return image;
    return warp(image, "twirl", insideCircle(centre, radius), From{centre},
                [=, scale = static_cast<float>(1 / radius),
                 angle = static_cast<float>(-angle)](Position p) SIMD_INLINE {
                    float distance = simd::sqrt(p.x * p.x + p.y * p.y);
                    float inside = simd::max(1 - distance * scale, 0);
                    float turn = angle * falloff(inside, distance), s = simd::sin(turn),
                          c = simd::cos(turn) - 1;
                    // Outside, the pixels stay as they are, to the last digit.
                    return Position{inside > 0 ? c * p.x - s * p.y : 0, inside > 0 ? s * p.x + c * p.y : 0};
                });
}

} // namespace engine::distortion
