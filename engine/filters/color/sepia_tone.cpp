#include "registry.h"

#include <color/vecmath.h>

namespace engine {

/// The sepia matrix in common use, mixed with the picture by the intensity. It was made for coded colour: in
/// linear light the curve of the display would take most of the brown away again. So the step codes and
/// decodes around it.
static SpanFunction sepiaStep(float intensity) {
    return [=](const Span& s, int, int, int n) {
        namespace simd = color::simd;
        simd::run([=, r = s.plane[0], g = s.plane[1], b = s.plane[2], a = s.plane[3]]() SIMD_INLINE {
            SIMD_LOOP
            for (int i = 0; i < n; ++i) {
                float inverse = a[i] > 0 ? 1 / a[i] : 0;
                float red = simd::linearToSrgb(r[i] * inverse), green = simd::linearToSrgb(g[i] * inverse);
                float blue = simd::linearToSrgb(b[i] * inverse);
                float brownRed = 0.393f * red + 0.769f * green + 0.189f * blue;
                float brownGreen = 0.349f * red + 0.686f * green + 0.168f * blue;
                float brownBlue = 0.272f * red + 0.534f * green + 0.131f * blue;
                r[i] = a[i] * simd::srgbToLinear(simd::mix(red, brownRed, intensity));
                g[i] = a[i] * simd::srgbToLinear(simd::mix(green, brownGreen, intensity));
                b[i] = a[i] * simd::srgbToLinear(simd::mix(blue, brownBlue, intensity));
            }
        });
    };
}

static Image build(const Inputs& in) {
    double intensity = in.number("inputIntensity", -10, 10);
    if (intensity == 0) return in.image("inputImage");
    return pointStep(in.image("inputImage"), "sepia",
                     [t = static_cast<float>(intensity)](const RenderContext&) { return sepiaStep(t); });
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
