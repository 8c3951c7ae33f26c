// CIWhitePointAdjust: what white becomes.
#include "filter.h"
#include "kernel.h"

namespace engine {

/// The colour becomes what white was: each component times the colour's, in linear light, as measured on Core
/// Image.
static Image build(const Inputs& in) {
    Color color = in.color("inputColor");
    color.a = 1; // how opaque the colour is has no meaning here
    return eachPixel(in.image("inputImage"), "white point", [=](const RenderContext& context) {
        return [white = pixel(context.color(color))](Pixel p) SIMD_INLINE {
            return eachColor(p, white, [](float v, float w) SIMD_INLINE { return v * w; });
        };
    });
}

static const Registrar filter{
    {"CIWhitePointAdjust",
     "White Point Adjust",
     "Tints a picture so that white becomes a given colour.",
     fitted("each component times the colour's, in linear light", 0.07),
     "10.4",
     categories("ColorAdjustment Video StillImage Interlaced NonSquarePixels BuiltIn"),
     {imageInput(), colorInput("inputColor", "Color", "Color", {1, 1, 1, 1}, Color{1, 1, 1, 1})},
     build}};

} // namespace engine
