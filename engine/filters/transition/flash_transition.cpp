// CIFlashTransition: a flash of light that another picture comes out of.
#include "striation.h"
#include "transition.h"

#include <cmath>

namespace engine::transitions {

namespace {

/// The radius of the flash's core. It grows exponentially and reaches the corners of the extent just when the
/// light begins to fade: the law that gives both radii which Core Image's pictures show.
double coreRadius(const Inputs& in, Point centre) {
    double growth = 8.0527 * (time(in) / std::max(in.number("inputFadeThreshold", 0, 1), 0.01) - 1);
    return 1.0235 * farthestCorner(in.rect("inputExtent"), centre) * std::exp(std::min(growth, 60.0));
}

/// The light is that of a sun, its rays the smaller of two components of the noise.
Image flash(const Inputs& in, const Rect& extent) {
    Point centre = in.point("inputCenter");
    double radius = std::min(coreRadius(in, centre), 1e12);
    double reach = std::min(radius * in.number("inputMaxStriationRadius", 0, 1000), 1e12);
    return eachPlace(
        "flash", squareAround(centre, reach).intersect(extent), From{centre},
        [=, striation = Striation(in, {128, 128}, 100), red = noisePlane(0), alpha = noisePlane(3),
         color = in.color("inputColor"), core = static_cast<float>(radius),
         perReach = static_cast<float>(reach > 0 ? 1 / reach : 0)](const RenderContext& context) {
            return [=, full = pixel(context.color(color))](Position p) SIMD_INLINE {
                auto [distance, direction] = polar(p);
                float fade = simd::max(1 - distance * perReach, 0), near = core / distance;
                float ray = striation.at(direction, [=](float x, float y) SIMD_INLINE {
                    return simd::min(red.at(x, y), alpha.at(x, y));
                });
                float glow = fade * near * near, white = fade * ray;
                return light(full.r * glow + white, full.g * glow + white, full.b * glow + white);
            };
        });
}

Image build(const Inputs& in) {
    Image image = in.image("inputImage"), target = in.image("inputTargetImage");
    if (!image) return nullptr;
    if (time(in) == 0) return image;
    Rect extent = target ? image->extent().unite(target->extent()) : image->extent();
    Image lit =
        eachPixel("flash over", extent, {image, flash(in, extent)}, [](Pixel p, Pixel light) SIMD_INLINE {
            return Pixel{simd::min(p.r + light.r, 1), simd::min(p.g + light.g, 1),
                         simd::min(p.b + light.b, 1), simd::min(p.a + light.a, 1)};
        });
    double threshold = in.number("inputFadeThreshold", 0, 1);
    double faded = threshold < 1 ? std::max(time(in) - threshold, 0.0) / (1 - threshold) : time(in) == 1;
    return sum(weighted(lit, 1 - faded), weighted(target, faded));
}

const Registrar filter{
    {"CIFlashTransition",
     "Flash",
     "Lets a flash spread over a picture, and another one come out of it.",
     fitted("a sun that grows exponentially, and then fades", 0.07),
     "10.4",
     categories("Transition Video StillImage BuiltIn"),
     {imageInput(), targetInput(), vectorInput("inputCenter", "Center", "Position", {150, 150}),
      vectorInput("inputExtent", "Extent", "Rectangle", {0, 0, 300, 300}),
      colorInput("inputColor", "Color", "Color", {1, 0.8, 0.6, 1}), timeInput(),
      numberInput("inputMaxStriationRadius", "Maximum Striation Radius", "Scalar",
                  {.value = 2.58, .min = 0, .sliderMin = 0, .sliderMax = 10}),
      numberInput("inputStriationStrength", "Striation Strength", "Scalar",
                  {.value = 0.5, .min = 0, .sliderMin = 0, .sliderMax = 3}),
      numberInput("inputStriationContrast", "Striation Contrast", "Scalar",
                  {.value = 1.375, .min = 0, .sliderMin = 0, .sliderMax = 5}),
      numberInput("inputFadeThreshold", "Fade Threshold", "Scalar",
                  {.value = 0.85, .min = 0, .max = 1, .sliderMin = 0, .sliderMax = 1})},
     build}};

} // namespace

} // namespace engine::transitions
