// CIHighlightShadowAdjust: darker highlights and brighter shadows.
#include "filter.h"
#include "kernel.h"

namespace engine {

/// Up to two stops for shadows and 1.2 stops for highlights: as much as leaves brighter things brighter where
/// no neighbours count. With l the coded luminance of the guide, shadows weigh (1 - l)^3 and highlights l^2.
/// Without a radius each pixel guides itself; with one, its blurred surroundings do, so that contrast within
/// shadows and within highlights stays.
static Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    float shadow = static_cast<float>(in.number("inputShadowAmount", -1, 1));
    float highlight = static_cast<float>(1 - in.number("inputHighlightAmount", 0, 1));
    double radius = in.number("inputRadius", 0, 1000);
    if (!image || (shadow == 0 && highlight == 0)) return image;
    auto adjusted = [=](Pixel p, Pixel guide) SIMD_INLINE {
        float l = simd::linearToSrgbUnit(luminance(guide) * unpremultiply(guide.a)), d = 1 - l;
        return p * simd::exp2(2 * shadow * d * d * d - 1.2f * highlight * l * l);
    };
    if (radius > 0)
        return eachPixel("highlights and shadows", image->extent(), {image, gaussian(image, radius)},
                         adjusted);
    return eachPixel(image, "highlights and shadows", [=](Pixel p) SIMD_INLINE { return adjusted(p, p); });
}

static const Registrar filter{
    {"CIHighlightShadowAdjust",
     "Highlight and Shadow Adjust",
     "Darkens highlights and brightens or darkens shadows, each by what surrounds it.",
     ourOwn("up to two stops for shadows and 1.2 for highlights"),
     "10.7",
     categories("Stylize Video StillImage BuiltIn"),
     {imageInput(),
      numberInput("inputRadius", "Radius", "Scalar",
                  {.value = 0, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 10}),
      numberInput("inputShadowAmount", "Shadow Amount", "Scalar",
                  {.value = 0, .identity = 0, .min = -1, .max = 1, .sliderMin = -1, .sliderMax = 1}),
      numberInput("inputHighlightAmount", "Highlight Amount", "Scalar",
                  {.value = 1, .identity = 1, .min = 0, .max = 1, .sliderMin = 0.3, .sliderMax = 1})},
     build}};

} // namespace engine
