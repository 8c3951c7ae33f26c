// The ways to lay one picture over another: Porter and Duff's, the arithmetic ones, and the blend modes.
#include "registry.h"

#include <color/vecmath.h>

#include <utility>

namespace engine {

namespace {

namespace simd = color::simd;

/// The same formula for all four premultiplied components: f(s, d, alpha of s, alpha of d).
template <class F>
void eachComponent(const Span& above, const Span& below, int n) {
    // Alpha comes last, so that the colours still see it.
    for (int c = 0; c < 4; ++c) {
        const float *s = above.plane[c], *sa = above.plane[3], *da = below.plane[3];
        float* d = below.plane[c];
        simd::run([=]() SIMD_INLINE {
            SIMD_LOOP
            for (int i = 0; i < n; ++i) d[i] = F::of(s[i], d[i], sa[i], da[i]);
        });
    }
}

/// The formula of PDF's separable blend modes: where both are, f(s, d) of their straight colours counts.
template <class F>
void separable(const Span& above, const Span& below, int n) {
    const float *sa = above.plane[3], *da = below.plane[3];
    for (int c = 0; c < 3; ++c) {
        const float* s = above.plane[c];
        float* d = below.plane[c];
        simd::run([=]() SIMD_INLINE {
            SIMD_LOOP
            for (int i = 0; i < n; ++i) {
                float a = sa[i], b = da[i];
                float mixed = F::of(a > 0 ? s[i] / a : 0, b > 0 ? d[i] / b : 0);
                d[i] = s[i] * (1 - b) + d[i] * (1 - a) + a * b * mixed;
            }
        });
    }
    simd::run([=, d = below.plane[3]]() SIMD_INLINE {
        SIMD_LOOP
        for (int i = 0; i < n; ++i) d[i] = sa[i] + d[i] - sa[i] * d[i];
    });
}

// clang-format off
#define FORMULA4(name, result) struct name { \
    SIMD_INLINE static float of([[maybe_unused]] float s, [[maybe_unused]] float d, [[maybe_unused]] float sa, \
                                [[maybe_unused]] float da) { return result; } }
FORMULA4(Atop, s * da + d * (1 - sa));
FORMULA4(In, s * da);
FORMULA4(Out, s * (1 - da));
FORMULA4(Add, s + d);
FORMULA4(Largest, simd::max(s, d));
FORMULA4(Smallest, simd::min(s, d));
FORMULA4(Product, s * d);

#define FORMULA(name, result) struct name { SIMD_INLINE static float of(float s, float d) { return result; } }
FORMULA(Multiply, s * d);
FORMULA(Screen, s + d - s * d);
FORMULA(HardLight, s <= 0.5f ? 2 * s * d : 1 - 2 * (1 - s) * (1 - d));
FORMULA(Overlay, HardLight::of(d, s));
FORMULA(Darken, simd::min(s, d));
FORMULA(Lighten, simd::max(s, d));
FORMULA(Difference, simd::abs(s - d));
FORMULA(Exclusion, s + d - 2 * s * d);
FORMULA(ColorDodge, d <= 0 ? 0 : s >= 1 ? 1 : simd::min(1, d / (1 - s)));
FORMULA(ColorBurn, d >= 1 ? 1 : s <= 0 ? 0 : 1 - simd::min(1, (1 - d) / s));
// clang-format on

struct SoftLight {
    SIMD_INLINE static float of(float s, float d) {
        float bright = d <= 0.25f ? ((16 * d - 12) * d + 4) * d : simd::sqrt(d);
        float darker = d - (1 - 2 * s) * d * (1 - d), lighter = d + (2 * s - 1) * (bright - d);
        return s <= 0.5f ? darker : lighter;
    }
};

struct Rgb {
    float r, g, b;
    SIMD_INLINE float luminosity() const { return 0.3f * r + 0.59f * g + 0.11f * b; }
    SIMD_INLINE float low() const { return simd::min(r, simd::min(g, b)); }
    SIMD_INLINE float high() const { return simd::max(r, simd::max(g, b)); }
    SIMD_INLINE float saturation() const { return high() - low(); }
    /// Its distance from the gray y, times f.
    SIMD_INLINE Rgb from(float y, float f) const {
        return {y + (r - y) * f, y + (g - y) * f, y + (b - y) * f};
    }
    SIMD_INLINE Rgb withSaturation(float s) const {
        float bottom = low(), range = high() - bottom, f = range > 0 ? s / range : 0;
        return {(r - bottom) * f, (g - bottom) * f, (b - bottom) * f};
    }
    /// Towards gray as far as it takes to stay within 0 and 1.
    SIMD_INLINE Rgb withLuminosity(float y) const {
        float d = y - luminosity();
        Rgb c{r + d, g + d, b + d};
        float bottom = c.low(), top = c.high();
        c = c.from(y, bottom < 0 && y > bottom ? y / (y - bottom) : 1);
        return c.from(y, top > 1 && top > y ? (1 - y) / (top - y) : 1);
    }
};

/// The formula of PDF's blend modes whose components depend on each other.
template <class F>
void nonSeparable(const Span& above, const Span& below, int n) {
    simd::run([=, sr = above.plane[0], sg = above.plane[1], sb = above.plane[2], sa = above.plane[3],
               dr = below.plane[0], dg = below.plane[1], db = below.plane[2],
               da = below.plane[3]]() SIMD_INLINE {
        SIMD_LOOP
        for (int i = 0; i < n; ++i) {
            float a = sa[i], b = da[i], fs = a > 0 ? 1 / a : 0, fd = b > 0 ? 1 / b : 0;
            Rgb mixed =
                F::of(Rgb{sr[i] * fs, sg[i] * fs, sb[i] * fs}, Rgb{dr[i] * fd, dg[i] * fd, db[i] * fd});
            dr[i] = sr[i] * (1 - b) + dr[i] * (1 - a) + a * b * mixed.r;
            dg[i] = sg[i] * (1 - b) + dg[i] * (1 - a) + a * b * mixed.g;
            db[i] = sb[i] * (1 - b) + db[i] * (1 - a) + a * b * mixed.b;
            da[i] = a + b - a * b;
        }
    });
}

// clang-format off
#define FORMULA3(name, result) struct name { SIMD_INLINE static Rgb of(const Rgb& s, const Rgb& d) { return result; } }
FORMULA3(Hue, s.withSaturation(d.saturation()).withLuminosity(d.luminosity()));
FORMULA3(Saturation, d.withSaturation(s.saturation()).withLuminosity(d.luminosity()));
FORMULA3(ColorOf, s.withLuminosity(d.luminosity()));
FORMULA3(Luminosity, d.withLuminosity(s.luminosity()));
// clang-format on

/// Colours and alpha add up, but nothing is more than opaque.
void addition(const Span& above, const Span& below, int n) {
    eachComponent<Add>(above, below, n);
    for (int i = 0; i < n; ++i) below.plane[3][i] = simd::min(below.plane[3][i], 1);
}

struct Mode {
    const char *name, *displayName, *description;
    BlendMode blend;
};

constexpr Mode modes[] = {
    {"CISourceOverCompositing", "Source Over", "Lays a picture over another.", {"source over", sourceOver}},
    {"CISourceAtopCompositing",
     "Source Atop",
     "Lays a picture over another where that one is, and nowhere else.",
     {"source atop", eachComponent<Atop>, false, true}},
    {"CISourceInCompositing",
     "Source In",
     "Keeps a picture where another one is.",
     {"source in", eachComponent<In>, false, false}},
    {"CISourceOutCompositing",
     "Source Out",
     "Keeps a picture where another one is not.",
     {"source out", eachComponent<Out>, true, false}},
    {"CIAdditionCompositing", "Addition", "Adds the light of two pictures.", {"addition", addition}},
    {"CIMaximumCompositing",
     "Maximum",
     "Takes the larger of each component of two pictures.",
     {"maximum", eachComponent<Largest>}},
    {"CIMinimumCompositing",
     "Minimum",
     "Takes the smaller of each component of two pictures.",
     {"minimum", eachComponent<Smallest>, false, false}},
    {"CIMultiplyCompositing",
     "Multiply",
     "Multiplies the components of two pictures.",
     {"multiply", eachComponent<Product>, false, false}},
    {"CIMultiplyBlendMode",
     "Multiply Blend Mode",
     "Multiplies colours, like two slides laid on each other.",
     {"multiply blend", separable<Multiply>}},
    {"CIScreenBlendMode",
     "Screen Blend Mode",
     "Multiplies the inverses of colours, like two projectors.",
     {"screen", separable<Screen>}},
    {"CIOverlayBlendMode",
     "Overlay Blend Mode",
     "Multiplies or screens, depending on the background.",
     {"overlay", separable<Overlay>}},
    {"CIHardLightBlendMode",
     "Hard Light Blend Mode",
     "Multiplies or screens, depending on the picture on top.",
     {"hard light", separable<HardLight>}},
    {"CISoftLightBlendMode",
     "Soft Light Blend Mode",
     "Darkens or lightens gently, depending on the picture on top.",
     {"soft light", separable<SoftLight>}},
    {"CIDarkenBlendMode",
     "Darken Blend Mode",
     "Takes the darker of each colour component.",
     {"darken", separable<Darken>}},
    {"CILightenBlendMode",
     "Lighten Blend Mode",
     "Takes the lighter of each colour component.",
     {"lighten", separable<Lighten>}},
    {"CIDifferenceBlendMode",
     "Difference Blend Mode",
     "Takes how much colours differ.",
     {"difference", separable<Difference>}},
    {"CIExclusionBlendMode",
     "Exclusion Blend Mode",
     "Takes how much colours differ, with less contrast.",
     {"exclusion", separable<Exclusion>}},
    {"CIColorDodgeBlendMode",
     "Color Dodge Blend Mode",
     "Brightens the background to reflect the picture on top.",
     {"color dodge", separable<ColorDodge>}},
    {"CIColorBurnBlendMode",
     "Color Burn Blend Mode",
     "Darkens the background to reflect the picture on top.",
     {"color burn", separable<ColorBurn>}},
    {"CIHueBlendMode",
     "Hue Blend Mode",
     "Gives the background the hue of the picture on top.",
     {"hue", nonSeparable<Hue>}},
    {"CISaturationBlendMode",
     "Saturation Blend Mode",
     "Gives the background the saturation of the picture on top.",
     {"saturation", nonSeparable<Saturation>}},
    {"CIColorBlendMode",
     "Color Blend Mode",
     "Gives the background the hue and saturation of the picture on top.",
     {"color", nonSeparable<ColorOf>}},
    {"CILuminosityBlendMode",
     "Luminosity Blend Mode",
     "Gives the background the luminosity of the picture on top.",
     {"luminosity", nonSeparable<Luminosity>}},
};

template <std::size_t i>
Image build(const Inputs& in) {
    return blend(modes[i].blend, in.image("inputImage"), in.image("inputBackgroundImage"));
}

template <std::size_t... i>
std::array<Registrar, sizeof...(i)> registerAll(std::index_sequence<i...>) {
    auto info = [](const Mode& mode, Image (*build)(const Inputs&)) -> FilterInfo {
        bool blends = std::string_view(mode.name).ends_with("BlendMode");
        auto names =
            blends
                ? "CompositeOperation Video StillImage Interlaced NonSquarePixels BuiltIn"
                : "CompositeOperation Video StillImage Interlaced NonSquarePixels HighDynamicRange BuiltIn";
        return {mode.name,
                mode.displayName,
                mode.description,
                "10.4",
                categories(names),
                {imageInput(), imageInput("inputBackgroundImage", "Background Image")},
                build};
    };
    return {Registrar(info(modes[i], build<i>))...};
}

const auto registrars = registerAll(std::make_index_sequence<std::size(modes)>());

} // namespace

} // namespace engine
