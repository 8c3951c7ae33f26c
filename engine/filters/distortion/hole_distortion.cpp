// CIHoleDistortion: a round hole that pushes the picture outwards.
#include "filter.h"
#include "radial.h"
#include "warps.h"

#include <cmath>

namespace engine {

namespace {

/// The centre is drawn apart to a circle, and the more distant the less: a pixel at a distance d shows what
/// lies at d - radius^2 / d. The hole's edge fades within the first pixel beyond the radius. (Fitted to Core
/// Image's picture, mean residual 0.3 of 255; its size is that of the extent.)
Image build(const Inputs& in) {
    Point centre = in.point("inputCenter");
    double radius = in.number("inputRadius", 0.01, 1e6);
    Reach reach = upTo(radius);
    reach.extent = [=](const Rect& source) {
        return distortion::movedAlongRays(source, centre,
                                          [=](double d) { return (1 + std::hypot(1, 2 * radius / d)) / 2; });
    };
    Image pushed = warp(in.image("inputImage"), "hole", reach, From{centre},
                        [rim = static_cast<float>(radius * radius)](Position p) SIMD_INLINE {
                            // On the rim and inside it, the centre.
                            float nearer = simd::min(rim / simd::max(p.x * p.x + p.y * p.y, 1e-6f), 1);
                            return Position{-nearer * p.x, -nearer * p.y};
                        });
    return weighted(pushed, "hole", From{centre}, [rim = static_cast<float>(radius)](Position p) SIMD_INLINE {
        return simd::unit(simd::sqrt(p.x * p.x + p.y * p.y) - rim);
    });
}

const Registrar filter{
    {"CIHoleDistortion",
     "Hole Distortion",
     "Opens a round hole and pushes a picture outwards around it.",
     fitted("a distance d shows d - radius^2 / d", 0.3),
     "10.4",
     categories("DistortionEffect Video StillImage BuiltIn"),
     {imageInput(), vectorInput("inputCenter", "Center", "Position", {150, 150}),
      numberInput("inputRadius", "Radius", "Distance",
                  {.value = 150, .identity = 0.1, .min = 0.01, .sliderMin = 0.01, .sliderMax = 1000})},
     build}};

} // namespace

} // namespace engine
