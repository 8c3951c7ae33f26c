// CIVortexDistortion: the inside of a circle turned many times.
#include "turning.h"

namespace engine {

namespace {

/// The turn is the angle times (1 - distance / radius)^2 / distance, with the distance in pixels.
Image build(const Inputs& in) {
    return distortion::turned(in, [](float inside, float distance) SIMD_INLINE {
        // At the centre the turn would have no end.
        return inside * inside / simd::max(distance, 0.5f);
    });
}

const Registrar filter{
    {"CIVortexDistortion",
     "Vortex Distortion",
     "Turns the inside of a circle many times, like water that runs off.",
     fitted("the turn is the angle times (1 - d / radius)^2 / d"),
     "10.4",
     categories("DistortionEffect Video StillImage BuiltIn"),
     {imageInput(), vectorInput("inputCenter", "Center", "Position", {150, 150}),
      numberInput("inputRadius", "Radius", "Distance",
                  {.value = 300, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 800}),
      numberInput("inputAngle", "Angle", "Angle",
                  {.value = 18 * pi, .identity = 0, .sliderMin = -30 * pi, .sliderMax = 30 * pi})},
     build}};

} // namespace

} // namespace engine
