// CISunbeamsGenerator: a sun with rays.
#include "rays.h"

namespace engine::generators {

namespace {

/// A disc, and rays that fade with the distance from it: gone at (1 + the greatest striation radius) radii.
/// (Core Image does not document its formula.)
Image build(const Inputs& in) {
    double radius = std::max(in.number("inputSunRadius", 0, 1e5), 0.5);
    double reach = std::max(in.number("inputMaxStriationRadius", 0, 1000), 1e-3);
    return light("sunbeams", in, radius * (1 + reach),
                 [=, rays = Rays(in), perRadius = static_cast<float>(1 / radius),
                  perReach = static_cast<float>(1 / reach)](float distance, float turns, float) SIMD_INLINE {
                     float beyond = distance * perRadius - 1, disc = simd::unit(1 - 8 * beyond);
                     float fade = simd::unit(1 - beyond * perReach);
                     return simd::max(disc, 2 * fade * fade * rays.at(turns));
                 });
}

const Registrar filter{
    {"CISunbeamsGenerator",
     "Sunbeams",
     "Makes a sun with rays.",
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
