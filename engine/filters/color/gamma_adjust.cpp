// CIGammaAdjust: a power curve.
#include "filter.h"
#include "kernel.h"

namespace engine {

/// rgb to the power p on straight colour: the public definition. Negative components keep their sign.
static Image build(const Inputs& in) {
    double power = in.number("inputPower", 0, 1000);
    if (power == 1) return in.image("inputImage");
    return eachStraightColor(in.image("inputImage"), "gamma",
                             [p = static_cast<float>(power)](float v)
                                 SIMD_INLINE { return simd::copySign(simd::pow(simd::abs(v), p), v); });
}

static const Registrar filter{
    {"CIGammaAdjust",
     "Gamma Adjust",
     "Lightens or darkens the middle tones by a power curve.",
     publicDefinition("rgb to a power"),
     "10.4",
     categories("ColorAdjustment Video StillImage Interlaced NonSquarePixels BuiltIn"),
     {imageInput(), numberInput("inputPower", "Power", "Scalar",
                                {.value = 1, .identity = 1, .sliderMin = 0.25, .sliderMax = 4})},
     build}};

} // namespace engine
