// CISepiaTone: brown, as in an old photograph.
#include "filter.h"
#include "kernel.h"

namespace engine {

/// Each component of the brown is a power of the luminance, in linear light, mixed with the picture by the
/// intensity. (Fitted to Core Image's pictures: within 0.0014 of 1, root mean square.)
static Image build(const Inputs& in) {
    double intensity = in.number("inputIntensity", -10, 10);
    if (intensity == 0) return in.image("inputImage");
    return eachStraightPixel(in.image("inputImage"), "sepia",
                             [t = static_cast<float>(intensity)](Pixel p) SIMD_INLINE {
                                 float light = simd::max(luminance(p), 0);
                                 return mix(p,
                                            {simd::pow(light, 0.79f), 0.99f * simd::pow(light, 1.10f),
                                             0.914f * simd::pow(light, 1.93f), p.a},
                                            t);
                             });
}

static const Registrar filter{
    {"CISepiaTone",
     "Sepia Tone",
     "Tints a picture brown like an old photograph.",
     fitted("a power of the luminance for each component, within 0.0014 of 1"),
     "10.4",
     categories("ColorEffect Video Interlaced NonSquarePixels StillImage BuiltIn"),
     {imageInput(), numberInput("inputIntensity", "Intensity", "Scalar",
                                {.value = 1, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 1})},
     build}};

} // namespace engine
