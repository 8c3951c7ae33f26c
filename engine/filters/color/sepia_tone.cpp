// CISepiaTone: brown, as in an old photograph.
#include "filter.h"
#include "kernel.h"

namespace engine {

/// The sepia matrix in common use, mixed with the picture by the intensity. It was made for coded colour: in
/// linear light the curve of the display would take most of the brown away again. So the step codes and
/// decodes around it.
static Image build(const Inputs& in) {
    double intensity = in.number("inputIntensity", -10, 10);
    if (intensity == 0) return in.image("inputImage");
    return eachStraightPixel(in.image("inputImage"), "sepia",
                             [t = static_cast<float>(intensity)](Pixel p) SIMD_INLINE {
                                 Pixel c = coded(p);
                                 Pixel brown{0.393f * c.r + 0.769f * c.g + 0.189f * c.b,
                                             0.349f * c.r + 0.686f * c.g + 0.168f * c.b,
                                             0.272f * c.r + 0.534f * c.g + 0.131f * c.b, c.a};
                                 return decoded(mix(c, brown, t));
                             });
}

static const Registrar filter{
    {"CISepiaTone",
     "Sepia Tone",
     "Tints a picture brown like an old photograph.",
     "10.4",
     categories("ColorEffect Video Interlaced NonSquarePixels StillImage BuiltIn"),
     {imageInput(), numberInput("inputIntensity", "Intensity", "Scalar",
                                {.value = 1, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 1})},
     build}};

} // namespace engine
