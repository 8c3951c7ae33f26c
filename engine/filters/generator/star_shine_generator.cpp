// CIStarShineGenerator: a star with a cross of spikes.
#include "filter.h"
#include "striation.h"

#include <cmath>

namespace engine::generators {

namespace {

/// Coloured light that falls off with the square of the distance, and white spikes along two axes. A spike's
/// light is a power of the product of both coordinates along the axes; it fades with the square of the
/// distance to nothing at `scale` radii. Fitted to two of Core Image's pictures (mean residual 0.3 and 0.5 of
/// 255): what the exponent and the brightness owe to opacity, width and epsilon is the simplest law that
/// gives both.
Image build(const Inputs& in) {
    Point centre = in.point("inputCenter");
    double radius = in.number("inputRadius", 0, 1e5), angle = in.number("inputCrossAngle", -1e6, 1e6);
    double width = std::max(in.number("inputCrossWidth", 0, 1e4), 1e-3),
           scale = in.number("inputCrossScale", 0, 1e4);
    double power = std::exp(-in.number("inputEpsilon", -8, 8)) / width;
    // Of the spikes where the product of the coordinates is 1, as a logarithm.
    double brightness = in.number("inputCrossOpacity", -8, 8) - 2.922 +
                        power * std::log(1.131 * std::pow(width * std::max(radius, 1e-3), 2));
    double reach = scale * radius, c = std::cos(angle), s = std::sin(angle);
    Affine turned{c, -s, s, c, -c * centre.x - s * centre.y, s * centre.x - c * centre.y};
    auto log2e = 1 / std::numbers::ln2;
    return eachPlace(
        "star shine", Rect::infinite(), Through{turned},
        [=, color = in.color("inputColor"), star = static_cast<float>(radius),
         power = static_cast<float>(power), bright = static_cast<float>(brightness * log2e),
         perReach = static_cast<float>(reach > 0 ? 1 / reach : 1e6)](const RenderContext& context) {
            return [=, full = pixel(context.color(color))](Position p) SIMD_INLINE {
                float distance = polar(p).distance, near = star / distance, glow = near * near;
                float product = simd::max(simd::abs(p.x * p.y), 1e-6f);
                float fade = simd::max(1 - distance * perReach, 0);
                float white = fade * fade * simd::exp2(bright - power * simd::log2(product));
                return light(simd::min(full.r * glow + white, 1), simd::min(full.g * glow + white, 1),
                             simd::min(full.b * glow + white, 1));
            };
        });
}

const Registrar filter{
    {"CIStarShineGenerator",
     "Star Shine",
     "Makes a star with a cross of spikes.",
     fitted("two pictures; the laws between them are the simplest that give both", 0.5),
     "10.4",
     categories("Generator Video StillImage BuiltIn"),
     {vectorInput("inputCenter", "Center", "Position", {150, 150}),
      colorInput("inputColor", "Color", "", {1, 0.8, 0.6, 1}),
      numberInput("inputRadius", "Radius", "Distance",
                  {.value = 50, .min = 0, .sliderMin = 0, .sliderMax = 300}),
      numberInput("inputCrossScale", "Cross Scale", "Scalar",
                  {.value = 15, .identity = 15, .min = 0, .sliderMin = 0, .sliderMax = 100}),
      numberInput("inputCrossAngle", "Cross Angle", "Angle",
                  {.value = 0.6, .sliderMin = -pi, .sliderMax = pi}),
      numberInput("inputCrossOpacity", "Cross Opacity", "Scalar",
                  {.value = -2, .identity = -2, .min = -8, .sliderMin = -8, .sliderMax = 0}),
      numberInput("inputCrossWidth", "Cross Width", "Distance",
                  {.value = 2.5, .min = 0, .sliderMin = 0.5, .sliderMax = 10}),
      numberInput("inputEpsilon", "Epsilon", "Scalar",
                  {.value = -2, .identity = -2, .min = -8, .sliderMin = -8, .sliderMax = 0})},
     build}};

} // namespace

} // namespace engine::generators
