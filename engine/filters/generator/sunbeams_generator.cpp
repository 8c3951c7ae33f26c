// CISunbeamsGenerator: a sun with rays.
#include "rays.h"

namespace engine::generators {

namespace {

/// Light that falls off with the square of the distance, and rays, both fading to nothing at the greatest
/// striation radius, in sun radii.
Image build(const Inputs& in) {
    Point centre = in.point("inputCenter");
    double radius = in.number("inputSunRadius", 0, 1e5);
    double reach = radius * in.number("inputMaxStriationRadius", 0, 1000);
    return eachPlace(
        "sunbeams", squareAround(centre, reach), From{centre},
        [=, rays = Rays(in), color = in.color("inputColor"), sun = static_cast<float>(radius),
         perReach = static_cast<float>(reach > 0 ? 1 / reach : 0)](const RenderContext& context) {
            return [=, full = pixel(context.color(color))](Position p) SIMD_INLINE {
                auto [distance, direction] = polar(p);
                float fade = simd::max(1 - distance * perReach, 0), near = sun / distance;
                float glow = fade * near * near, white = fade * rays.at(direction);
                return light(full.r * glow + white, full.g * glow + white, full.b * glow + white);
            };
        });
}

const Registrar filter{
    {"CISunbeamsGenerator",
     "Sunbeams",
     "Makes a sun with rays.",
     fitted("light and rays that fade with the square of the distance", 0.19),
     "10.4",
     categories("Generator Video StillImage BuiltIn"),
     {vectorInput("inputCenter", "Center", "Position", {150, 150}),
      colorInput("inputColor", "Color", "", {1, 0.5, 0, 1}),
      numberInput("inputSunRadius", "Sun Radius", "Distance",
                  {.value = 40, .identity = 40, .min = 0, .sliderMin = 0, .sliderMax = 800}),
      numberInput("inputMaxStriationRadius", "Maximum Striation Radius", "Scalar",
                  {.value = 2.58, .identity = 2.58, .min = 0, .sliderMin = 0, .sliderMax = 10}),
      numberInput("inputStriationStrength", "Striation Strength", "Scalar",
                  {.value = 0.5, .identity = 0.5, .min = 0, .sliderMin = 0, .sliderMax = 3}),
      numberInput("inputStriationContrast", "Striation Contrast", "Scalar",
                  {.value = 1.375, .identity = 1.375, .min = 0, .sliderMin = 0, .sliderMax = 5}),
      numberInput("inputTime", "Time", "Scalar",
                  {.value = 0, .identity = 0, .min = 0, .max = 1, .sliderMin = 0, .sliderMax = 1})},
     build}};

} // namespace

} // namespace engine::generators
