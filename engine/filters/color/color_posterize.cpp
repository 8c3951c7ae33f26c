#include "registry.h"

#include <color/vecmath.h>

namespace engine {

/// So many even steps in each component of the coded colour, black and white among them: round(c (n - 1)) /
/// (n - 1). Coded, because even steps of light would leave the eye next to none in the shadows.
static Image build(const Inputs& in) {
    float last = static_cast<float>(std::max(in.number("inputLevels", 1, 1e4) - 1, 1e-3));
    return pointStep(in.image("inputImage"), "posterize", [=](const RenderContext&) -> SpanFunction {
        return [=](const Span& s, int, int, int n) {
            namespace simd = color::simd;
            const float* a = s.plane[3];
            for (int c = 0; c < 3; ++c)
                simd::run([=, p = s.plane[c]]() SIMD_INLINE {
                    SIMD_LOOP
                    for (int i = 0; i < n; ++i) {
                        float coded = simd::linearToSrgb(a[i] > 0 ? p[i] / a[i] : 0);
                        p[i] = a[i] * simd::srgbToLinear(simd::floor(coded * last + 0.5f) / last);
                    }
                });
        };
    });
}

static const Registrar filter{
    {"CIColorPosterize",
     "Color Posterize",
     "Leaves a picture only so many steps of each colour component.",
     "10.4",
     categories("ColorEffect Video Interlaced NonSquarePixels StillImage BuiltIn"),
     {imageInput(), numberInput("inputLevels", "Levels", "Scalar",
                                {.value = 6, .identity = 300, .min = 1, .sliderMin = 2, .sliderMax = 30})},
     build}};

} // namespace engine
