// CIBumpDistortion: a round bump, raised or pressed in.
#include "bump.h"

namespace engine {

namespace {

const Registrar filter{
    {"CIBumpDistortion",
     "Bump Distortion",
     "Raises a round bump out of a picture, or presses one in.",
     "10.4",
     categories("DistortionEffect Video StillImage BuiltIn"),
     {imageInput(), vectorInput("inputCenter", "Center", "Position", {150, 150}),
      numberInput("inputRadius", "Radius", "Distance",
                  {.value = 300, .min = 0, .sliderMin = 0, .sliderMax = 600}),
      numberInput("inputScale", "Scale", "Scalar",
                  {.value = 0.5, .identity = 0, .sliderMin = -1, .sliderMax = 1})},
     [](const Inputs& in) { return distortion::bumped(in, in.number("inputScale", -10, 10)); }}};

} // namespace

} // namespace engine
