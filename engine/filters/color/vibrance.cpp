// CIVibrance: more colour where there is little.
#include "filter.h"
#include "kernel.h"

namespace engine {

/// Scales the distance of a colour from its luminance by 1 + amount (1 - saturation): dull colours change
/// most, and vivid ones hardly. Hues between red and yellow, where skin is, change by half as much at their
/// middle. (Our own formula.)
static Image build(const Inputs& in) {
    double amount = in.number("inputAmount", -1, 1);
    if (amount == 0) return in.image("inputImage");
    // Everything here is a ratio or in proportion, so premultiplied colours serve.
    return eachPixel(in.image("inputImage"), "vibrance",
                     [amount = static_cast<float>(amount)](Pixel p) SIMD_INLINE {
                         float y = luminance(p), high = largest(p);
                         float saturation = high > 0 ? simd::unit((high - smallest(p)) / high) : 0;
                         // From 0 at red to 1 at yellow, and beyond those where the hue is another.
                         float hue = p.r > p.b ? simd::unit((p.g - p.b) / (p.r - p.b)) : 0;
                         float gain = 1 + amount * (1 - saturation) * (1 - 2 * hue * (1 - hue));
                         return eachColor(p, [=](float v) SIMD_INLINE { return y + gain * (v - y); });
                     });
}

static const Registrar filter{
    {"CIVibrance",
     "Vibrance",
     "Makes dull colours more vivid, and leaves skin and vivid colours alone.",
     "10.7",
     categories("ColorAdjustment Video StillImage Interlaced NonSquarePixels BuiltIn"),
     {imageInput(),
      numberInput("inputAmount", "Amount", "Scalar",
                  {.value = 0, .identity = 0, .min = -1, .max = 1, .sliderMin = -1, .sliderMax = 1})},
     build}};

} // namespace engine
