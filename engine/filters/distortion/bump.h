// A round bump, as CIBumpDistortion and CIPinchDistortion make it.
#pragma once

#include "filter.h"
#include "warps.h"

namespace engine::distortion {

/// Reads nearer to the centre, or farther from it, by a share that falls from the centre to the rim: the
/// distance times 1 - strength (1 - (distance / radius)^2)^2. Neither the picture nor its direction breaks at
/// the rim. (Core Image does not document its formula; this one has its directions and its identity.)
inline Image bumped(const Inputs& in, double strength) {
    Image image = in.image("inputImage");
    Point centre = in.point("inputCenter");
    double radius = in.number("inputRadius", 0, 1e6);
    if (radius < 0.5 || strength == 0) return image;
    return warp(image, "bump", insideCircle(centre, radius), From{centre},
                [scale = static_cast<float>(1 / (radius * radius)),
                 strength = static_cast<float>(strength)](Position p) SIMD_INLINE {
                    float inside = simd::max(1 - (p.x * p.x + p.y * p.y) * scale, 0);
                    float nearer = strength * inside * inside;
                    return Position{-nearer * p.x, -nearer * p.y};
                });
}

} // namespace engine::distortion
