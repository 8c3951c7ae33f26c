// The blend modes that add, subtract and divide colours: linear burn and dodge, pin light, subtract, divide.
#include "filter.h"
#include "kernel.h"

#include <utility>

namespace engine {

namespace {

/// PDF's formula of separable blend modes: where both pictures are, Mix::of(their straight colours) counts.
template <class Mix>
void separable(const Span& above, const Span& below, int n) {
    eachPixel(
        n,
        [](Pixel d, Pixel s) SIMD_INLINE {
            Pixel mixed = eachColor(straight(s), straight(d),
                                    [](float x, float y) SIMD_INLINE { return simd::unit(Mix::of(x, y)); });
            float both = s.a * d.a;
            Pixel rest =
                eachColor(s * (1 - d.a), d * (1 - s.a), [](float x, float y) SIMD_INLINE { return x + y; });
            return Pixel{rest.r + both * mixed.r, rest.g + both * mixed.g, rest.b + both * mixed.b,
                         s.a + d.a - both};
        },
        below, above);
}

// The public definitions, of a colour s above d; what leaves 0..1 is clipped.
struct LinearBurn {
    SIMD_INLINE static float of(float s, float d) { return s + d - 1; }
};
struct LinearDodge {
    SIMD_INLINE static float of(float s, float d) { return s + d; }
};
struct PinLight {
    SIMD_INLINE static float of(float s, float d) {
        float darker = simd::min(d, 2 * s), lighter = simd::max(d, 2 * s - 1);
        return s < 0.5f ? darker : lighter;
    }
};
struct Subtract {
    SIMD_INLINE static float of(float s, float d) { return d - s; }
};
/// Black divides black to black, and everything else to white.
struct Divide {
    SIMD_INLINE static float of(float s, float d) { return d / simd::max(s, 1e-6f); }
};

struct Mode {
    const char *name, *displayName, *description;
    Source source;
    BlendMode blend;
};

constexpr Mode modes[] = {
    {"CILinearBurnBlendMode",
     "Linear Burn Blend Mode",
     "Darkens the background by what the picture on top lacks to white.",
     publicDefinition("the usual formula, in PDF's frame of separable blend modes"),
     {"linear burn", separable<LinearBurn>}},
    {"CILinearDodgeBlendMode",
     "Linear Dodge Blend Mode",
     "Brightens the background by the picture on top.",
     publicDefinition("the usual formula, in PDF's frame of separable blend modes"),
     {"linear dodge", separable<LinearDodge>}},
    {"CIPinLightBlendMode",
     "Pin Light Blend Mode",
     "Replaces colours of the background where the picture on top is much darker or lighter.",
     publicDefinition("the usual formula, in PDF's frame of separable blend modes"),
     {"pin light", separable<PinLight>}},
    {"CISubtractBlendMode",
     "Subtract Blend Mode",
     "Subtracts the picture on top from the background.",
     publicDefinition("the usual formula, in PDF's frame of separable blend modes"),
     {"subtract", separable<Subtract>}},
    {"CIDivideBlendMode",
     "Divide Blend Mode",
     "Divides the background by the picture on top.",
     publicDefinition("the usual formula, in PDF's frame of separable blend modes"),
     {"divide", separable<Divide>}},
};

template <std::size_t i>
Image build(const Inputs& in) {
    return blend(modes[i].blend, in.image("inputImage"), in.image("inputBackgroundImage"));
}

template <std::size_t... i>
std::array<Registrar, sizeof...(i)> registerAll(std::index_sequence<i...>) {
    auto info = [](const Mode& mode, Image (*build)(const Inputs&)) -> FilterInfo {
        return {mode.name,
                mode.displayName,
                mode.description,
                mode.source,
                "10.10",
                categories("CompositeOperation Video StillImage Interlaced NonSquarePixels BuiltIn"),
                {imageInput(), imageInput("inputBackgroundImage", "Background Image")},
                build};
    };
    return {Registrar(info(modes[i], build<i>))...};
}

const auto registrars = registerAll(std::make_index_sequence<std::size(modes)>());

} // namespace

} // namespace engine
