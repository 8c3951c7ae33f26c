#include "registry.h"

#include <color/vecmath.h>

namespace engine {

namespace {

namespace simd = color::simd;

Image made(const char* filter, const Values& values) { return apply(*findFilter(filter), values); }

/// Black where the edges of the picture, freed from noise, are steeper than the threshold; transparent
/// elsewhere. The contrast is how fast the one becomes the other. (Core Image tells what the filter is made
/// of; the formula is ours.)
Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    if (!image) return nullptr;
    image = made("CINoiseReduction", {{"inputImage", image},
                                      {"inputNoiseLevel", in.number("inputNRNoiseLevel")},
                                      {"inputSharpness", in.number("inputNRSharpness")}});
    image = made("CIEdges", {{"inputImage", image}, {"inputIntensity", in.number("inputEdgeIntensity")}});
    double threshold = in.number("inputThreshold", 0, 1e3), contrast = in.number("inputContrast", 0.25, 1e4);
    return pointStep(image, "line overlay", [=](const RenderContext&) -> SpanFunction {
        return [threshold = static_cast<float>(threshold),
                contrast = static_cast<float>(contrast)](const Span& s, int, int, int n) {
            simd::run([=, r = s.plane[0], g = s.plane[1], b = s.plane[2], a = s.plane[3]]() SIMD_INLINE {
                SIMD_LOOP
                for (int i = 0; i < n; ++i) {
                    float edge = 0.2126f * r[i] + 0.7152f * g[i] + 0.0722f * b[i];
                    a[i] *= simd::unit((edge - threshold) * contrast + 0.5f);
                    r[i] = g[i] = b[i] = 0;
                }
            });
        };
    });
}

const Registrar filter{
    {"CILineOverlay",
     "Line Overlay",
     "Draws the edges of a picture as black lines.",
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

} // namespace

} // namespace engine
