// CITwirlDistortion: the inside of a circle turned.
#include "turning.h"

namespace engine {

namespace {

/// The turn falls from the centre to the rim as smoothstep does. (Fitted to Core Image's picture within half
/// a degree.)
Image build(const Inputs& in) {
    return distortion::turned(in, [](float inside, float) SIMD_INLINE { return smoothstep(inside); });
}

const Registrar filter{
    {"CITwirlDistortion",
     "Twirl Distortion",
     "Turns the inside of a circle, most of all its centre.",
     fitted("the turn falls to the rim as smoothstep does, within half a degree"),
     "10.4",
     categories("DistortionEffect Video StillImage BuiltIn"),
     {imageInput(), vectorInput("inputCenter", "Center", "Position", {150, 150}),
      numberInput("inputRadius", "Radius", "Distance",
                  {.value = 300, .identity = 300, .min = 0, .sliderMin = 0, .sliderMax = 500}),
      numberInput("inputAngle", "Angle", "Angle",
                  {.value = pi, .identity = 0, .sliderMin = -4 * pi, .sliderMax = 4 * pi})},
     build}};

} // namespace

} // namespace engine
