// CIColorControls: saturation, brightness and contrast.
#include "filter.h"
#include "kernel.h"

namespace engine {

/// Saturation mixes with the luminance, then contrast scales around one half, and brightness is added last.
/// All in linear light.
static Image build(const Inputs& in) {
    double s = in.number("inputSaturation", -1000, 1000), c = in.number("inputContrast", -1000, 1000);
    double bias = 0.5 - 0.5 * c + in.number("inputBrightness", -1000, 1000);
    std::array<double, 9> m;
    for (int i = 0; i < 9; ++i) m[i] = c * ((1 - s) * luminanceWeights[i % 3] + (i % 4 == 0 ? s : 0));
    return colorMatrix(in.image("inputImage"), colorsOnly(m, bias));
}

static const Registrar filter{
    {"CIColorControls",
     "Color Controls",
     "Changes the saturation, brightness and contrast of a picture.",
     fitted("saturation, then contrast around one half, then brightness, in linear light"),
     "10.4",
     categories("ColorAdjustment Video StillImage Interlaced NonSquarePixels BuiltIn"),
     {imageInput(),
      numberInput("inputSaturation", "Saturation", "Scalar",
                  {.value = 1, .identity = 1, .min = 0, .sliderMin = 0, .sliderMax = 2}),
      numberInput("inputBrightness", "Brightness", "Scalar",
                  {.value = 0, .identity = 0, .min = -1, .sliderMin = -1, .sliderMax = 1}),
      numberInput("inputContrast", "Contrast", "Scalar",
                  {.value = 1, .identity = 1, .min = 0, .sliderMin = 0.25, .sliderMax = 4})},
     build}};

} // namespace engine
