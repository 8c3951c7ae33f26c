// CILineOverlay: edges drawn as black lines.
#include "filter.h"
#include "kernel.h"

namespace engine {

static Image made(const char* filter, const Values& values) { return apply(*findFilter(filter), values); }

/// Black where the edges of the picture, freed from noise, are steeper than the threshold; transparent
/// elsewhere. The contrast is how fast the one becomes the other. (That it is made of noise reduction, edges
/// and a threshold is Core Image's; the formula is ours.)
static Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    if (!image) return nullptr;
    image = made("CINoiseReduction", {{"inputImage", image},
                                      {"inputNoiseLevel", in.number("inputNRNoiseLevel")},
                                      {"inputSharpness", in.number("inputNRSharpness")}});
    image = made("CIEdges", {{"inputImage", image}, {"inputIntensity", in.number("inputEdgeIntensity")}});
    return eachPixel(
        image, "line overlay",
        [threshold = static_cast<float>(in.number("inputThreshold", 0, 1e3)),
         contrast = static_cast<float>(in.number("inputContrast", 0.25, 1e4))](Pixel p)
            SIMD_INLINE { return gray(0, p.a * simd::unit((luminance(p) - threshold) * contrast + 0.5f)); });
}

static const Registrar filter{
    {"CILineOverlay",
     "Line Overlay",
     "Draws the edges of a picture as black lines.",
     ourOwn("Core Image documents noise reduction, edges and a threshold; the formula is our own"),
     "10.5",
     categories("Stylize Video StillImage BuiltIn"),
     {imageInput(),
      numberInput("inputNRNoiseLevel", "NR Noise Level", "Scalar",
                  {.value = 0.07, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 0.1}),
      numberInput("inputNRSharpness", "NR Sharpness", "Scalar",
                  {.value = 0.71, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 2}),
      numberInput("inputEdgeIntensity", "Edge Intensity", "Scalar",
                  {.value = 1, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 200}),
      numberInput("inputThreshold", "Threshold", "Scalar",
                  {.value = 0.1, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 1}),
      numberInput("inputContrast", "Contrast", "Scalar",
                  {.value = 50, .identity = 1, .min = 0.25, .sliderMin = 0.25, .sliderMax = 200})},
     build}};

} // namespace engine
