// CIBumpDistortionLinear: a bump along a line.
#include "filter.h"
#include "warps.h"

#include <cmath>

namespace engine {

namespace {

/// As of a round bump, but what counts is the distance from the line through the centre.
Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    double radius = in.number("inputRadius", 0, 1e6), strength = in.number("inputScale", -10, 10);
    double angle = in.number("inputAngle", -1e6, 1e6);
    if (radius < 0.5 || strength == 0) return image;
    Point normal{-std::sin(angle), std::cos(angle)};
    // d (1 - d^2)^2 is greatest at d = sqrt(1/5).
    Reach reach = upTo(std::abs(strength) * radius * 0.2863);
    return warp(image, "ridge", reach, Along{in.point("inputCenter"), normal, 1},
                [nx = static_cast<float>(normal.x), ny = static_cast<float>(normal.y),
                 scale = static_cast<float>(1 / (radius * radius)),
                 strength = static_cast<float>(strength)](float d) SIMD_INLINE {
                    float inside = simd::max(1 - d * d * scale, 0);
                    float nearer = strength * inside * inside * d;
                    return Position{-nearer * nx, -nearer * ny};
                });
}

const Registrar filter{
    {"CIBumpDistortionLinear",
     "Bump Distortion Linear",
     "Raises a ridge out of a picture, or presses a groove in.",
     "10.5",
     categories("DistortionEffect Video StillImage BuiltIn"),
     {imageInput(), vectorInput("inputCenter", "Center", "Position", {150, 150}),
      numberInput("inputRadius", "Radius", "Distance",
                  {.value = 300, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 600}),
      numberInput("inputAngle", "Angle", "Angle",
                  {.value = 0, .identity = 0, .sliderMin = 0, .sliderMax = 2 * pi}),
      numberInput("inputScale", "Scale", "Scalar",
                  {.value = 0.5, .identity = 1, .min = -1, .sliderMin = 0, .sliderMax = 1})},
     build}};

} // namespace

} // namespace engine
