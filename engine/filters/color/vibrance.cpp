#include "registry.h"

#include <color/vecmath.h>

namespace engine {

/// Scales the distance of a colour from its luminance by 1 + amount (1 - saturation): dull colours change
/// most, and vivid ones hardly. Hues between red and yellow, where skin is, change by half as much at their
/// middle.
static SpanFunction vibranceStep(float amount) {
    return [=](const Span& s, int, int, int n) {
        namespace simd = color::simd;
        simd::run([=, r = s.plane[0], g = s.plane[1], b = s.plane[2]]() SIMD_INLINE {
            SIMD_LOOP
            for (int i = 0; i < n; ++i) {
                // Everything here is a ratio or in proportion, so premultiplied colours serve.
                float y = 0.2126f * r[i] + 0.7152f * g[i] + 0.0722f * b[i];
                float high = simd::max(r[i], simd::max(g[i], b[i]));
                float low = simd::min(r[i], simd::min(g[i], b[i]));
                float saturation = high > 0 ? simd::unit((high - low) / high) : 0;
                // From 0 at red to 1 at yellow, and beyond those where the hue is another.
                float hue = r[i] > b[i] ? simd::unit((g[i] - b[i]) / (r[i] - b[i])) : 0;
                float gain = 1 + amount * (1 - saturation) * (1 - 2 * hue * (1 - hue));
                r[i] = y + gain * (r[i] - y);
                g[i] = y + gain * (g[i] - y);
                b[i] = y + gain * (b[i] - y);
            }
        });
    };
}

static Image build(const Inputs& in) {
    double amount = in.number("inputAmount", -1, 1);
    if (amount == 0) return in.image("inputImage");
    return pointStep(in.image("inputImage"), "vibrance",
                     [a = static_cast<float>(amount)](const RenderContext&) { return vibranceStep(a); });
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
