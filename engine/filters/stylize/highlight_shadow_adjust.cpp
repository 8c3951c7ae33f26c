#include "registry.h"

#include <color/vecmath.h>

namespace engine {

namespace {

/// Up to two stops for shadows and 1.2 stops for highlights: as much as leaves brighter things brighter where
/// no neighbours count. With l the coded luminance of the guide, shadows weigh (1 - l)^3 and highlights l^2.
void adjust(const Span& s, const Span& guide, int n, float shadow, float highlight) {
    namespace simd = color::simd;
    simd::run([=, r = s.plane[0], g = s.plane[1], b = s.plane[2], gr = guide.plane[0], gg = guide.plane[1],
               gb = guide.plane[2], ga = guide.plane[3]]() SIMD_INLINE {
        SIMD_LOOP
        for (int i = 0; i < n; ++i) {
            float y = 0.2126f * gr[i] + 0.7152f * gg[i] + 0.0722f * gb[i];
            float l = simd::linearToSrgbUnit(ga[i] > 0 ? y / ga[i] : 0), d = 1 - l;
            float gain = simd::exp2(2 * shadow * d * d * d - 1.2f * highlight * l * l);
            r[i] *= gain;
            g[i] *= gain;
            b[i] *= gain;
        }
    });
}

/// Without a radius each pixel guides itself; with one, its blurred surroundings do, so that contrast within
/// shadows and within highlights stays.
Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    float shadow = static_cast<float>(in.number("inputShadowAmount", -1, 1));
    float highlight = static_cast<float>(1 - in.number("inputHighlightAmount", 0, 1));
    double radius = in.number("inputRadius", 0, 1000);
    if (!image || (shadow == 0 && highlight == 0)) return image;
    if (radius == 0)
        return pointStep(image, "highlights and shadows", [=](const RenderContext&) -> SpanFunction {
            return [=](const Span& s, int, int, int n) { adjust(s, s, n, shadow, highlight); };
        });
    return combine("highlights and shadows", image->extent(), {image, gaussian(image, radius)},
                   [=](const Span* s, int n) { adjust(s[0], s[1], n, shadow, highlight); });
}

const Registrar filter{
    {"CIHighlightShadowAdjust",
     "Highlight and Shadow Adjust",
     "Darkens highlights and brightens or darkens shadows, each by what surrounds it.",
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

} // namespace

} // namespace engine
