// CIExposureAdjust: more or less light.
#include "filter.h"

#include <cmath>

namespace engine {

/// rgb * 2^EV, the public definition: one stop is a doubling of light.
static Image build(const Inputs& in) {
    double f = std::exp2(in.number("inputEV", -64, 64));
    return colorMatrix(in.image("inputImage"), colorsOnly({f, 0, 0, 0, f, 0, 0, 0, f}));
}

static const Registrar filter{
    {"CIExposureAdjust",
     "Exposure Adjust",
     "Brightens or darkens a picture as a longer or shorter exposure would.",
     publicDefinition("rgb * 2^EV in linear light"),
     "10.4",
     categories("ColorAdjustment Video StillImage Interlaced NonSquarePixels BuiltIn"),
     {imageInput(),
      numberInput("inputEV", "EV", "Scalar", {.value = 0, .identity = 0, .sliderMin = -10, .sliderMax = 10})},
     build}};

} // namespace engine
