// CIVibrance: more colour where there is little.
#include "filter.h"
#include "kernel.h"

namespace engine {

/// Scales the distance of a colour from the mean of its components, in linear light.
///
/// An amount of -1 leaves 0.15 of it where a colour is vivid and 0.55 where it is dull, between these by the
/// root of what the saturation lacks to 1; reds keep 0.19 however vivid they are. Smaller negative amounts
/// take off their share of that. No picture of a positive amount is known: there it is the dull colours that
/// change by 0.85 of the amount, vivid ones by 0.45, and reds, skin among them, by 0.25.
static Image build(const Inputs& in) {
    double amount = in.number("inputAmount", -1, 1);
    if (amount == 0) return in.image("inputImage");
    // The changes of dull, vivid and red colours.
    Pixel change = amount < 0 ? Pixel{0.45f, 0.85f, 0.81f, 0} : Pixel{0.85f, 0.45f, 0.25f, 0};
    change = change * static_cast<float>(amount);
    // Everything here is a ratio or in proportion, so premultiplied colours serve.
    return eachPixel(in.image("inputImage"), "vibrance",
                     [dull = change.r, vivid = change.g, red = change.b](Pixel p) SIMD_INLINE {
                         float mean = (p.r + p.g + p.b) * (1 / 3.f), high = largest(p),
                               range = high - smallest(p);
                         float saturation = high > 0 ? simd::unit(range / high) : 0;
                         // 1 at red, 0 from yellow through green and blue to magenta.
                         float redness = range > 0 ? simd::unit((p.r - simd::max(p.g, p.b)) / range) : 0;
                         float gain =
                             1 + simd::mix(simd::mix(vivid, dull, simd::sqrt(1 - saturation)), red, redness);
                         return eachColor(p, [=](float v) SIMD_INLINE { return mean + gain * (v - mean); });
                     });
}

static const Registrar filter{
    {"CIVibrance",
     "Vibrance",
     "Makes dull colours more vivid, and leaves skin and vivid colours alone.",
     fitted("an amount of -1; positive amounts are our own"),
     "10.7",
     categories("ColorAdjustment Video StillImage Interlaced NonSquarePixels BuiltIn"),
     {imageInput(),
      numberInput("inputAmount", "Amount", "Scalar",
                  {.value = 0, .identity = 0, .min = -1, .max = 1, .sliderMin = -1, .sliderMax = 1})},
     build}};

} // namespace engine
