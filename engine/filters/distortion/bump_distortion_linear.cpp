// CIBumpDistortionLinear: a bump along a line.
#include "filter.h"
#include "warps.h"

#include <cmath>

namespace engine {

namespace {

/// What a round bump does to the distance from its centre, this one does to the distance from the line
/// through the centre: d becomes d (1 - scale S(1 - |d| / radius)), where S is smoothstep. The extent stays.
Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    double radius = in.number("inputRadius", 0, 1e6), strength = in.number("inputScale", -10, 10);
    double angle = in.number("inputAngle", -1e6, 1e6);
    if (radius < 0.5 || strength == 0) return image;
    Point normal{-std::sin(angle), std::cos(angle)};
    // t S(1 - t) is at most 0.26.
    Reach reach = upTo(std::abs(strength) * radius * 0.2601);
    reach.extent = [](const Rect& source) { return source; };
    return warp(image, "ridge", reach, Along{in.point("inputCenter"), normal, 1},
                [nx = static_cast<float>(normal.x), ny = static_cast<float>(normal.y),
                 perRadius = static_cast<float>(1 / radius), strength = static_cast<float>(strength)](float d)
                    SIMD_INLINE {
                        float nearer = strength * smoothstep(1 - simd::abs(d) * perRadius) * d;
                        return Position{-nearer * nx, -nearer * ny};
                    });
}

const Registrar filter{
    {"CIBumpDistortionLinear",
     "Bump Distortion Linear",
     "Raises a ridge out of a picture, or presses a groove in.",
     fitted("smoothstep of the distance from the line", 0.01),
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
