// CIPinchDistortion: the inside of a circle drawn together.
#include "bump.h"

namespace engine {

namespace {

const Registrar filter{
    {"CIPinchDistortion",
     "Pinch Distortion",
     "Draws the inside of a circle together towards its centre.",
     "10.4",
     categories("DistortionEffect Video StillImage BuiltIn"),
     {imageInput(), vectorInput("inputCenter", "Center", "Position", {150, 150}),
      numberInput("inputRadius", "Radius", "Distance",
                  {.value = 300, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 1000}),
      numberInput("inputScale", "Scale", "Scalar",
                  {.value = 0.5, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 2})},
     [](const Inputs& in) { return distortion::bumped(in, -in.number("inputScale", 0, 10)); }}};

} // namespace

} // namespace engine
