// The blend modes of PDF (ISO 32000-1, 11.3.5), but for soft light and those that are not separable, which
// Core Image's pictures show to be computed otherwise. Separable: CIMultiplyBlendMode, CIScreenBlendMode,
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
/// A gamma curve, from the square of the background under black to its root under white.
SIMD_INLINE inline float softLight(float s, float d) {
    float darker = 2 - 2 * s, lighter = 1.5f - s;
    return simd::pow(d, simd::max(s < 0.5f ? darker : lighter, 0));
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

/// A colour of linear light between 0 and 1 in the parts of HSL, in which Core Image's pictures show these
/// modes to be computed: the hue as each component's height between the least one at -1/2 and the largest at
/// 1/2, or 0 where all are alike.
struct Hsl {
    Pixel hue;
    float saturation, lightness;
};
/// The chroma of full saturation.
SIMD_INLINE inline float fullChroma(float lightness) { return 1 - simd::abs(2 * lightness - 1); }
SIMD_INLINE inline Hsl hsl(Pixel c) {
    c = eachColor(c, [](float v) SIMD_INLINE { return simd::unit(v); });
    float top = largest(c), bottom = smallest(c), chroma = top - bottom, lightness = 0.5f * (top + bottom);
    float scale = chroma > 0 ? 1 / chroma : 0, full = fullChroma(lightness);
    return {eachColor(c, [=](float v) SIMD_INLINE { return (v - lightness) * scale; }),
            full > 0 ? simd::unit(chroma / full) : 0, lightness};
}
SIMD_INLINE inline Pixel rgb(Pixel hue, float saturation, float lightness) {
    float chroma = saturation * fullChroma(lightness);
    return eachColor(hue, [=](float v) SIMD_INLINE { return lightness + chroma * v; });
}

SIMD_INLINE inline Pixel hue(Pixel s, Pixel d) {
    Hsl below = hsl(d);
    return rgb(hsl(s).hue, below.saturation, below.lightness);
}
SIMD_INLINE inline Pixel saturation(Pixel s, Pixel d) {
    Hsl below = hsl(d);
    return rgb(below.hue, hsl(s).saturation, below.lightness);
}
SIMD_INLINE inline Pixel colorOf(Pixel s, Pixel d) {
    Hsl above = hsl(s);
    return rgb(above.hue, above.saturation, hsl(d).lightness);
}
SIMD_INLINE inline Pixel luminosity(Pixel s, Pixel d) {
    Hsl below = hsl(d);
    return rgb(below.hue, below.saturation, hsl(s).lightness);
}

constexpr Mode modes[] = {
    {"CIMultiplyBlendMode",
     "Multiply Blend Mode",
     "Multiplies colours, like two slides laid on each other.",
     publicDefinition("PDF's blend modes, ISO 32000-1, 11.3.5, in linear light"),
     {"multiply blend", separable<multiply>}},
    {"CIScreenBlendMode",
     "Screen Blend Mode",
     "Multiplies the inverses of colours, like two projectors.",
     publicDefinition("PDF's blend modes, ISO 32000-1, 11.3.5, in linear light"),
     {"screen", separable<screen>}},
    {"CIOverlayBlendMode",
     "Overlay Blend Mode",
     "Multiplies or screens, depending on the background.",
     publicDefinition("PDF's blend modes, ISO 32000-1, 11.3.5, in linear light"),
     {"overlay", separable<overlay>}},
    {"CIHardLightBlendMode",
     "Hard Light Blend Mode",
     "Multiplies or screens, depending on the picture on top.",
     publicDefinition("PDF's blend modes, ISO 32000-1, 11.3.5, in linear light"),
     {"hard light", separable<hardLight>}},
    {"CISoftLightBlendMode",
     "Soft Light Blend Mode",
     "Darkens or lightens gently, depending on the picture on top.",
     fitted("a gamma curve from the square of the background to its root"),
     {"soft light", separable<softLight>}},
    {"CIDarkenBlendMode",
     "Darken Blend Mode",
     "Takes the darker of each colour component.",
     publicDefinition("PDF's blend modes, ISO 32000-1, 11.3.5, in linear light"),
     {"darken", separable<darken>}},
    {"CILightenBlendMode",
     "Lighten Blend Mode",
     "Takes the lighter of each colour component.",
     publicDefinition("PDF's blend modes, ISO 32000-1, 11.3.5, in linear light"),
     {"lighten", separable<lighten>}},
    {"CIDifferenceBlendMode",
     "Difference Blend Mode",
     "Takes how much colours differ.",
     publicDefinition("PDF's blend modes, ISO 32000-1, 11.3.5, in linear light"),
     {"difference", separable<difference>}},
    {"CIExclusionBlendMode",
     "Exclusion Blend Mode",
     "Takes how much colours differ, with less contrast.",
     publicDefinition("PDF's blend modes, ISO 32000-1, 11.3.5, in linear light"),
     {"exclusion", separable<exclusion>}},
    {"CIColorDodgeBlendMode",
     "Color Dodge Blend Mode",
     "Brightens the background to reflect the picture on top.",
     publicDefinition("PDF's blend modes, ISO 32000-1, 11.3.5, in linear light"),
     {"color dodge", separable<colorDodge>}},
    {"CIColorBurnBlendMode",
     "Color Burn Blend Mode",
     "Darkens the background to reflect the picture on top.",
     publicDefinition("PDF's blend modes, ISO 32000-1, 11.3.5, in linear light"),
     {"color burn", separable<colorBurn>}},
    {"CIHueBlendMode",
     "Hue Blend Mode",
     "Gives the background the hue of the picture on top.",
     fitted("the parts of HSL, in linear light"),
     {"hue", blended<hue>}},
    {"CISaturationBlendMode",
     "Saturation Blend Mode",
     "Gives the background the saturation of the picture on top.",
     fitted("the parts of HSL, in linear light"),
     {"saturation", blended<saturation>}},
    {"CIColorBlendMode",
     "Color Blend Mode",
     "Gives the background the hue and saturation of the picture on top.",
     fitted("the parts of HSL, in linear light"),
     {"color", blended<colorOf>}},
    {"CILuminosityBlendMode",
     "Luminosity Blend Mode",
     "Gives the background the luminosity of the picture on top.",
     fitted("the parts of HSL, in linear light"),
     {"luminosity", blended<luminosity>}},
};

const auto registrars = registerModes<modes>("BuiltIn");

} // namespace

} // namespace engine
