#include "registry.h"

#include <color/vecmath.h>

namespace engine {

/// rgb to the power p on straight colour; negative components keep their sign.
static SpanFunction gammaStep(float p) {
    return [=](const Span& s, int, int, int n) {
        const float* alpha = s.plane[3];
        for (int c = 0; c < 3; ++c)
            color::simd::run([=, v = s.plane[c]]() SIMD_INLINE {
                SIMD_LOOP
                for (int i = 0; i < n; ++i) {
                    float a = alpha[i], x = a > 0 ? v[i] / a : 0;
                    v[i] = a * color::simd::copySign(color::simd::pow(color::simd::abs(x), p), x);
                }
            });
    };
}

static Image build(const Inputs& in) {
    double power = in.number("inputPower", 0, 1000);
    if (power == 1) return in.image("inputImage");
    return pointStep(in.image("inputImage"), "gamma",
                     [p = static_cast<float>(power)](const RenderContext&) { return gammaStep(p); });
}

static const Registrar filter{
    {"CIGammaAdjust",
     "Gamma Adjust",
     "Lightens or darkens the middle tones by a power curve.",
     "10.4",
     categories("ColorAdjustment Video StillImage Interlaced NonSquarePixels BuiltIn"),
     {imageInput(), numberInput("inputPower", "Power", "Scalar",
                                {.value = 1, .identity = 1, .sliderMin = 0.25, .sliderMax = 4})},
     build}};

} // namespace engine
