#include "registry.h"

#include <color/vecmath.h>

namespace engine {

namespace {

/// The chroma of skin in good light, in YIQ of coded colour.
constexpr double skinI = 0.103905, skinQ = 0.0176465;

/// Adds a shift in I and Q to coded colour. It comes with the luminance, as a colour of the light would: by
/// its full amount where that is 1, and not at all in black.
SpanFunction balanceStep(float shiftI, float shiftQ) {
    return [=](const Span& s, int, int, int n) {
        namespace simd = color::simd;
        simd::run([=, r = s.plane[0], g = s.plane[1], b = s.plane[2], alpha = s.plane[3]]() SIMD_INLINE {
            SIMD_LOOP
            for (int i = 0; i < n; ++i) {
                float a = alpha[i], inverse = a > 0 ? 1 / a : 0;
                float red = simd::linearToSrgb(r[i] * inverse), green = simd::linearToSrgb(g[i] * inverse);
                float blue = simd::linearToSrgb(b[i] * inverse);
                float dark = 1 - simd::unit(0.299f * red + 0.587f * green + 0.114f * blue);
                float weight = 1 - dark * dark, di = shiftI * weight, dq = shiftQ * weight;
                // From the inverse of the YIQ matrix.
                r[i] = a * simd::srgbToLinear(red + 0.9562957f * di + 0.6210244f * dq);
                g[i] = a * simd::srgbToLinear(green - 0.2721221f * di - 0.6473806f * dq);
                b[i] = a * simd::srgbToLinear(blue - 1.1069890f * di + 1.7046150f * dq);
            }
        });
    };
}

/// Warmth 0.5 aims at skin in neutral light; 0 at half of its I, 1 at half as much again.
Image build(const Inputs& in) {
    double strength = in.number("inputStrength", 0, 1), warmth = in.number("inputWarmth", 0, 1);
    float shiftI = static_cast<float>(strength * (skinI * (0.5 + warmth) - in.number("inputOrigI", -1, 1)));
    float shiftQ = static_cast<float>(strength * (skinQ - in.number("inputOrigQ", -1, 1)));
    if (shiftI == 0 && shiftQ == 0) return in.image("inputImage");
    return pointStep(in.image("inputImage"), "face balance",
                     [=](const RenderContext&) { return balanceStep(shiftI, shiftQ); });
}

const Registrar filter{
    {"CIFaceBalance",
     "Face Balance",
     "Shifts the colours of a picture so that a face in it gets the colour of skin in good light.",
     "10.8",
     {},
     {imageInput(),
      numberInput("inputOrigI", "Original I", "Scalar",
                  {.value = skinI, .min = -1, .max = 1, .sliderMin = -0.6, .sliderMax = 0.6}),
      numberInput("inputOrigQ", "Original Q", "Scalar",
                  {.value = skinQ, .min = -1, .max = 1, .sliderMin = -0.6, .sliderMax = 0.6}),
      numberInput("inputStrength", "Strength", "Scalar",
                  {.value = 0.5, .identity = 0, .min = 0, .max = 1, .sliderMin = 0, .sliderMax = 1}),
      numberInput("inputWarmth", "Warmth", "Scalar",
                  {.value = 0.5, .min = 0, .max = 1, .sliderMin = 0, .sliderMax = 1})},
     build}};

} // namespace

} // namespace engine
