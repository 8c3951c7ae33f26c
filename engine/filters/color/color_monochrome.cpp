#include "registry.h"

#include <color/vecmath.h>

namespace engine {

/// Mixes each pixel with its luminance times the colour.
static Image build(const Inputs& in) {
    double intensity = in.number("inputIntensity", -10, 10);
    if (intensity == 0) return in.image("inputImage");
    return pointStep(in.image("inputImage"), "monochrome",
                     [t = static_cast<float>(intensity),
                      tint = in.color("inputColor")](const RenderContext& context) -> SpanFunction {
                         Rgba k = context.color({tint.r, tint.g, tint.b, 1});
                         return [=](const Span& s, int, int, int n) {
                             namespace simd = color::simd;
                             simd::run([=, r = s.plane[0], g = s.plane[1], b = s.plane[2]]() SIMD_INLINE {
                                 SIMD_LOOP
                                 for (int i = 0; i < n; ++i) {
                                     float y = 0.2126f * r[i] + 0.7152f * g[i] + 0.0722f * b[i];
                                     r[i] = simd::mix(r[i], y * k[0], t);
                                     g[i] = simd::mix(g[i], y * k[1], t);
                                     b[i] = simd::mix(b[i], y * k[2], t);
                                 }
                             });
                         };
                     });
}

static const Registrar filter{
    {"CIColorMonochrome",
     "Color Monochrome",
     "Turns a picture into shades of one colour.",
     "10.4",
     categories("ColorEffect Video Interlaced NonSquarePixels StillImage BuiltIn"),
     {imageInput(), colorInput("inputColor", "Color", "OpaqueColor", {0.6, 0.45, 0.3, 1}),
      numberInput("inputIntensity", "Intensity", "Scalar",
                  {.value = 1, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 1})},
     build}};

} // namespace engine
