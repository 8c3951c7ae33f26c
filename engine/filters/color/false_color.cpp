// CIFalseColor: two colours in place of dark and bright.
#include "filter.h"
#include "kernel.h"

namespace engine {

/// A mix of two colours, as much of the second as the pixel is bright; the picture's alpha multiplies it.
/// (Public definition; that brightness is linear luminance is fitted to Core Image's pictures.)
static Image build(const Inputs& in) {
    Color color0 = in.color("inputColor0"), color1 = in.color("inputColor1");
    return eachPixel(in.image("inputImage"), "false color", [=](const RenderContext& context) {
        return [first = pixel(context.color(color0)), second = pixel(context.color(color1))](Pixel p)
                   SIMD_INLINE -> Pixel {
                       float bright = luminance(p);
                       auto of = [=](float dark, float light)
                                     SIMD_INLINE { return dark * p.a + (light - dark) * bright; };
                       return {of(first.r, second.r), of(first.g, second.g), of(first.b, second.b),
                               of(first.a, second.a)};
                   };
    });
}

static const Registrar filter{
    {"CIFalseColor",
     "False Color",
     "Puts a mix of two colours in place of dark and bright.",
     publicDefinition("a mix of two colours by brightness; that it is linear luminance is fitted"),
     "10.4",
     categories("ColorEffect Video Interlaced NonSquarePixels StillImage BuiltIn"),
     {imageInput(), colorInput("inputColor0", "Color 1", "Color", {0.3, 0, 0, 1}),
      colorInput("inputColor1", "Color 2", "Color", {1, 0.9, 0.8, 1})},
     build}};

} // namespace engine
