// CIBumpDistortion: a round bump, raised or pressed in.
#include "filter.h"
#include "warps.h"

namespace engine {

namespace {

/// A pixel at the distance d from the centre shows what lies at d (1 - scale S(1 - d / radius)), where S is
/// smoothstep.
Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    Point centre = in.point("inputCenter");
    double radius = in.number("inputRadius", 0, 1e6), scale = in.number("inputScale", -10, 10);
    if (radius < 0.5 || scale == 0) return image;
    return warp(image, "bump", insideCircle(centre, radius), From{centre},
                [perRadius = static_cast<float>(1 / radius), scale = static_cast<float>(scale)](Position p)
                    SIMD_INLINE {
                        float nearer = scale * smoothstep(1 - simd::sqrt(p.x * p.x + p.y * p.y) * perRadius);
                        return Position{-nearer * p.x, -nearer * p.y};
                    });
}

const Registrar filter{{"CIBumpDistortion",
                        "Bump Distortion",
                        "Raises a round bump out of a picture, or presses one in.",
                        fitted("smoothstep of the distance", 0.01),
                        "10.4",
                        categories("DistortionEffect Video StillImage BuiltIn"),
                        {imageInput(), vectorInput("inputCenter", "Center", "Position", {150, 150}),
                         numberInput("inputRadius", "Radius", "Distance",
                                     {.value = 300, .min = 0, .sliderMin = 0, .sliderMax = 600}),
                         numberInput("inputScale", "Scale", "Scalar",
                                     {.value = 0.5, .identity = 0, .sliderMin = -1, .sliderMax = 1})},
                        build}};

} // namespace

} // namespace engine
