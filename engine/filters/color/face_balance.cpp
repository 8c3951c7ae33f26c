// CIFaceBalance: colours shifted towards those of skin.
#include "filter.h"
#include "kernel.h"

namespace engine {

namespace {

/// The chroma of skin in good light, in YIQ of coded colour.
constexpr double skinI = 0.103905, skinQ = 0.0176465;

/// Adds a shift in I and Q to coded colour. It comes with the luminance, as a colour of the light would: by
/// its full amount where that is 1, and not at all in black. Warmth 0.5 aims at skin in neutral light; 0 at
/// half of its I, 1 at half as much again.
Image build(const Inputs& in) {
    double strength = in.number("inputStrength", 0, 1), warmth = in.number("inputWarmth", 0, 1);
    float shiftI = static_cast<float>(strength * (skinI * (0.5 + warmth) - in.number("inputOrigI", -1, 1)));
    float shiftQ = static_cast<float>(strength * (skinQ - in.number("inputOrigQ", -1, 1)));
    if (shiftI == 0 && shiftQ == 0) return in.image("inputImage");
    return eachStraightPixel(in.image("inputImage"), "face balance", [=](Pixel p) SIMD_INLINE {
        Pixel c = coded(p);
        float dark = 1 - simd::unit(0.299f * c.r + 0.587f * c.g + 0.114f * c.b);
        float weight = 1 - dark * dark, di = shiftI * weight, dq = shiftQ * weight;
        // From the inverse of the YIQ matrix.
        return decoded({c.r + 0.9562957f * di + 0.6210244f * dq, c.g - 0.2721221f * di - 0.6473806f * dq,
                        c.b - 1.1069890f * di + 1.7046150f * dq, c.a});
    });
}

const Registrar filter{
    {"CIFaceBalance",
     "Face Balance",
     "Shifts the colours of a picture so that a face in it gets the colour of skin in good light.",
     ourOwn("a shift of I and Q towards the colour of skin"),
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
