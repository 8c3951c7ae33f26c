// CIColorMonochrome: shades of one colour.
#include "filter.h"
#include "kernel.h"

namespace engine {

/// Mixes each pixel with a shade: from black to the colour at luminance one half, and on to white, both ways
/// in even steps of linear light.
static Image build(const Inputs& in) {
    double intensity = in.number("inputIntensity", -10, 10);
    if (intensity == 0) return in.image("inputImage");
    Color color = in.color("inputColor");
    color.a = 1;
    return eachPixel(in.image("inputImage"), "monochrome", [=](const RenderContext& context) {
        return [tint = pixel(context.color(color)), t = static_cast<float>(intensity)](Pixel p) SIMD_INLINE {
            float dark = simd::min(2 * luminance(p), p.a), bright = 2 * luminance(p) - dark;
            return eachColor(p, tint, [=](float v, float k) SIMD_INLINE {
                return simd::mix(v, dark * k + bright * (1 - k), t);
            });
        };
    });
}

static const Registrar filter{
    {"CIColorMonochrome",
     "Color Monochrome",
     "Turns a picture into shades of one colour.",
     fitted("black to the colour at luminance one half and on to white"),
     "10.4",
     categories("ColorEffect Video Interlaced NonSquarePixels StillImage BuiltIn"),
     {imageInput(), colorInput("inputColor", "Color", "OpaqueColor", {0.6, 0.45, 0.3, 1}),
      numberInput("inputIntensity", "Intensity", "Scalar",
                  {.value = 1, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 1})},
     build}};

} // namespace engine
