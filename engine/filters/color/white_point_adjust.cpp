#include "registry.h"

#include <color/vecmath.h>

namespace engine {

/// The colour becomes what white was: each component times the colour's, in linear light, as measured on Core
/// Image.
static Image build(const Inputs& in) {
    return pointStep(in.image("inputImage"), "white point",
                     [white = in.color("inputColor")](const RenderContext& context) -> SpanFunction {
                         // Straight: how opaque the colour is has no meaning here.
                         Rgba f = context.color({white.r, white.g, white.b, 1});
                         return [=](const Span& s, int, int, int n) {
                             for (int c = 0; c < 3; ++c)
                                 color::simd::run([=, v = s.plane[c], factor = f[c]]() SIMD_INLINE {
                                     SIMD_LOOP
                                     for (int i = 0; i < n; ++i) v[i] *= factor;
                                 });
                         };
                     });
}

static const Registrar filter{
    {"CIWhitePointAdjust",
     "White Point Adjust",
     "Tints a picture so that white becomes a given colour.",
     "10.4",
     categories("ColorAdjustment Video StillImage Interlaced NonSquarePixels BuiltIn"),
     {imageInput(), colorInput("inputColor", "Color", "Color", {1, 1, 1, 1}, Color{1, 1, 1, 1})},
     build}};

} // namespace engine
