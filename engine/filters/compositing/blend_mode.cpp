// The blend modes of PDF (ISO 32000-1, 11.3.5). Separable: CIMultiplyBlendMode, CIScreenBlendMode,
// CIOverlayBlendMode, CIHardLightBlendMode, CISoftLightBlendMode, CIDarkenBlendMode, CILightenBlendMode,
// CIDifferenceBlendMode, CIExclusionBlendMode, CIColorDodgeBlendMode, CIColorBurnBlendMode; and not:
// CIHueBlendMode, CISaturationBlendMode, CIColorBlendMode, CILuminosityBlendMode.
#include "mode.h"

namespace engine {

namespace {

/// Where both are, f(s, d) of their straight colours counts.
template <Pixel (*f)(Pixel s, Pixel d)>
void blended(const Span& above, const Span& below, int n) {
    eachPixel(
        n,
        [](Pixel d, Pixel s) SIMD_INLINE -> Pixel {
            Pixel mixed = f(straight(s), straight(d));
            float both = s.a * d.a;
            return {s.r * (1 - d.a) + d.r * (1 - s.a) + both * mixed.r,
                    s.g * (1 - d.a) + d.g * (1 - s.a) + both * mixed.g,
                    s.b * (1 - d.a) + d.b * (1 - s.a) + both * mixed.b, s.a + d.a - both};
        },
        below, above);
}

template <float (*f)(float s, float d)>
SIMD_INLINE inline Pixel eachBy(Pixel s, Pixel d) {
    return eachColor(s, d, [](float s, float d) SIMD_INLINE { return f(s, d); });
}
/// The same formula for each colour.
template <float (*f)(float s, float d)>
constexpr auto separable = blended<eachBy<f>>;

SIMD_INLINE inline float multiply(float s, float d) { return s * d; }
SIMD_INLINE inline float screen(float s, float d) { return s + d - s * d; }
SIMD_INLINE inline float hardLight(float s, float d) {
    return s <= 0.5f ? 2 * s * d : 1 - 2 * (1 - s) * (1 - d);
}
SIMD_INLINE inline float overlay(float s, float d) { return hardLight(d, s); }
SIMD_INLINE inline float softLight(float s, float d) {
    float bright = d <= 0.25f ? ((16 * d - 12) * d + 4) * d : simd::sqrt(d);
    float darker = d - (1 - 2 * s) * d * (1 - d), lighter = d + (2 * s - 1) * (bright - d);
    return s <= 0.5f ? darker : lighter;
}
SIMD_INLINE inline float darken(float s, float d) { return simd::min(s, d); }
SIMD_INLINE inline float lighten(float s, float d) { return simd::max(s, d); }
SIMD_INLINE inline float difference(float s, float d) { return simd::abs(s - d); }
SIMD_INLINE inline float exclusion(float s, float d) { return s + d - 2 * s * d; }
SIMD_INLINE inline float colorDodge(float s, float d) {
    return d <= 0 ? 0 : s >= 1 ? 1 : simd::min(1, d / (1 - s));
}
SIMD_INLINE inline float colorBurn(float s, float d) {
    return d >= 1 ? 1 : s <= 0 ? 0 : 1 - simd::min(1, (1 - d) / s);
}

// PDF has weights of its own here, those of television's old primaries.
SIMD_INLINE inline float luminosityOf(Pixel c) { return 0.3f * c.r + 0.59f * c.g + 0.11f * c.b; }
SIMD_INLINE inline float saturationOf(Pixel c) { return largest(c) - smallest(c); }
/// Its distance from the gray y, times f.
SIMD_INLINE inline Pixel from(Pixel c, float y, float f) {
    return eachColor(c, [=](float v) SIMD_INLINE { return y + (v - y) * f; });
}
SIMD_INLINE inline Pixel withSaturation(Pixel c, float s) {
    float bottom = smallest(c), range = largest(c) - bottom, f = range > 0 ? s / range : 0;
    return eachColor(c, [=](float v) SIMD_INLINE { return (v - bottom) * f; });
}
/// Towards gray as far as it takes to stay within 0 and 1.
SIMD_INLINE inline Pixel withLuminosity(Pixel c, float y) {
    float d = y - luminosityOf(c);
    c = eachColor(c, [=](float v) SIMD_INLINE { return v + d; });
    float bottom = smallest(c), top = largest(c);
    c = from(c, y, bottom < 0 && y > bottom ? y / (y - bottom) : 1);
    return from(c, y, top > 1 && top > y ? (1 - y) / (top - y) : 1);
}

SIMD_INLINE inline Pixel hue(Pixel s, Pixel d) {
    return withLuminosity(withSaturation(s, saturationOf(d)), luminosityOf(d));
}
SIMD_INLINE inline Pixel saturation(Pixel s, Pixel d) {
    return withLuminosity(withSaturation(d, saturationOf(s)), luminosityOf(d));
}
SIMD_INLINE inline Pixel colorOf(Pixel s, Pixel d) { return withLuminosity(s, luminosityOf(d)); }
SIMD_INLINE inline Pixel luminosity(Pixel s, Pixel d) { return withLuminosity(d, luminosityOf(s)); }

constexpr Mode modes[] = {
    {"CIMultiplyBlendMode",
     "Multiply Blend Mode",
     "Multiplies colours, like two slides laid on each other.",
     {"multiply blend", separable<multiply>}},
    {"CIScreenBlendMode",
     "Screen Blend Mode",
     "Multiplies the inverses of colours, like two projectors.",
     {"screen", separable<screen>}},
    {"CIOverlayBlendMode",
     "Overlay Blend Mode",
     "Multiplies or screens, depending on the background.",
     {"overlay", separable<overlay>}},
    {"CIHardLightBlendMode",
     "Hard Light Blend Mode",
     "Multiplies or screens, depending on the picture on top.",
     {"hard light", separable<hardLight>}},
    {"CISoftLightBlendMode",
     "Soft Light Blend Mode",
     "Darkens or lightens gently, depending on the picture on top.",
     {"soft light", separable<softLight>}},
    {"CIDarkenBlendMode",
     "Darken Blend Mode",
     "Takes the darker of each colour component.",
     {"darken", separable<darken>}},
    {"CILightenBlendMode",
     "Lighten Blend Mode",
     "Takes the lighter of each colour component.",
     {"lighten", separable<lighten>}},
    {"CIDifferenceBlendMode",
     "Difference Blend Mode",
     "Takes how much colours differ.",
     {"difference", separable<difference>}},
    {"CIExclusionBlendMode",
     "Exclusion Blend Mode",
     "Takes how much colours differ, with less contrast.",
     {"exclusion", separable<exclusion>}},
    {"CIColorDodgeBlendMode",
     "Color Dodge Blend Mode",
     "Brightens the background to reflect the picture on top.",
     {"color dodge", separable<colorDodge>}},
    {"CIColorBurnBlendMode",
     "Color Burn Blend Mode",
     "Darkens the background to reflect the picture on top.",
     {"color burn", separable<colorBurn>}},
    {"CIHueBlendMode",
     "Hue Blend Mode",
     "Gives the background the hue of the picture on top.",
     {"hue", blended<hue>}},
    {"CISaturationBlendMode",
     "Saturation Blend Mode",
     "Gives the background the saturation of the picture on top.",
     {"saturation", blended<saturation>}},
    {"CIColorBlendMode",
     "Color Blend Mode",
     "Gives the background the hue and saturation of the picture on top.",
     {"color", blended<colorOf>}},
    {"CILuminosityBlendMode",
     "Luminosity Blend Mode",
     "Gives the background the luminosity of the picture on top.",
     {"luminosity", blended<luminosity>}},
};

const auto registrars = registerModes<modes>("BuiltIn");

} // namespace

} // namespace engine
