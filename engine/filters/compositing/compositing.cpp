// CISourceOverCompositing, CISourceAtopCompositing, CISourceInCompositing, CISourceOutCompositing (T. Porter
// and T. Duff, "Compositing Digital Images", 1984), and the arithmetic ones: CIAdditionCompositing,
// CIMaximumCompositing, CIMinimumCompositing, CIMultiplyCompositing.
#include "mode.h"

namespace engine {

namespace {

/// The same formula for all four premultiplied components: f(s, d, alpha of s, alpha of d).
template <float (*f)(float s, float d, float sa, float da)>
void components(const Span& above, const Span& below, int n) {
    eachPixel(
        n,
        [](Pixel d, Pixel s) SIMD_INLINE -> Pixel {
            return {f(s.r, d.r, s.a, d.a), f(s.g, d.g, s.a, d.a), f(s.b, d.b, s.a, d.a),
                    f(s.a, d.a, s.a, d.a)};
        },
        below, above);
}

SIMD_INLINE inline float atop(float s, float d, float sa, float da) { return s * da + d * (1 - sa); }
SIMD_INLINE inline float in(float s, float, float, float da) { return s * da; }
SIMD_INLINE inline float out(float s, float, float, float da) { return s * (1 - da); }
SIMD_INLINE inline float larger(float s, float d, float, float) { return simd::max(s, d); }
SIMD_INLINE inline float smaller(float s, float d, float, float) { return simd::min(s, d); }
/// The sum of two opaque pixels has alpha 2: only bitmaps are limited to 1.
SIMD_INLINE inline float added(float s, float d, float, float) { return s + d; }
SIMD_INLINE inline float product(float s, float d, float, float) { return s * d; }

constexpr Mode modes[] = {
    {"CISourceOverCompositing",
     "Source Over",
     "Lays a picture over another.",
     publicDefinition("Porter and Duff, \"Compositing Digital Images\", 1984"),
     {"source over", sourceOver}},
    {"CISourceAtopCompositing",
     "Source Atop",
     "Lays a picture over another where that one is, and nowhere else.",
     publicDefinition("Porter and Duff, \"Compositing Digital Images\", 1984"),
     {"source atop", components<atop>, false, true}},
    {"CISourceInCompositing",
     "Source In",
     "Keeps a picture where another one is.",
     publicDefinition("Porter and Duff, \"Compositing Digital Images\", 1984"),
     {"source in", components<in>, false, false}},
    {"CISourceOutCompositing",
     "Source Out",
     "Keeps a picture where another one is not.",
     publicDefinition("Porter and Duff, \"Compositing Digital Images\", 1984"),
     {"source out", components<out>, true, false}},
    {"CIAdditionCompositing",
     "Addition",
     "Adds the light of two pictures.",
     publicDefinition("the sum of the premultiplied components"),
     {"addition", components<added>}},
    {"CIMaximumCompositing",
     "Maximum",
     "Takes the larger of each component of two pictures.",
     publicDefinition("the larger of the premultiplied components"),
     {"maximum", components<larger>}},
    {"CIMinimumCompositing",
     "Minimum",
     "Takes the smaller of each component of two pictures.",
     publicDefinition("the smaller of the premultiplied components"),
     {"minimum", components<smaller>, false, false}},
    {"CIMultiplyCompositing",
     "Multiply",
     "Multiplies the components of two pictures.",
     publicDefinition("the product of the premultiplied components"),
     {"multiply", components<product>, false, false}},
};

const auto registrars = registerModes<modes>("HighDynamicRange BuiltIn");

} // namespace

} // namespace engine
