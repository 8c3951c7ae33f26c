// CILenticularHaloGenerator: a ring of light, as a lens shows it around a lamp.
#include "rays.h"

namespace engine::generators {

namespace {

/// Rings of rays, one for each component, that rise and fall as t^2 (3 - 2 t) across their width. At overlap
/// 1 all three are as wide as the halo, fitted to Core Image's picture (mean residual 0.15 of 255). With less
/// they are narrower and lie side by side, red outside and blue inside; that is our own reading of the
/// overlap, of which no picture is known.
Image build(const Inputs& in) {
    Point centre = in.point("inputCenter");
    double radius = in.number("inputHaloRadius", 0, 1e5),
           width = std::max(in.number("inputHaloWidth", 0, 1e5), 0.5);
    double apart = 1 - in.number("inputHaloOverlap", 0, 1), ring = width / (1 + 2 * apart);
    return eachPlace("halo", squareAround(centre, radius + width), From{centre},
                     [=, rays = Rays(in), color = in.color("inputColor"),
                      begin = static_cast<float>(radius / ring), step = static_cast<float>(apart),
                      perRing = static_cast<float>(1 / ring)](const RenderContext& context) {
                         return [=, full = pixel(context.color(color))](Position p) SIMD_INLINE {
                             auto [distance, direction] = polar(p);
                             float across = distance * perRing - begin, ray = rays.at(direction);
                             auto ring = [=](float inwards) SIMD_INLINE {
                                 return ray * smoothstep(1 - simd::abs(2 * (across - inwards * step) - 1));
                             };
                             return light(full.r * ring(2), full.g * ring(1), full.b * ring(0));
                         };
                     });
}

const Registrar filter{
    {"CILenticularHaloGenerator",
     "Lenticular Halo",
     "Makes a ring of light, as a lens shows it around a lamp.",
     fitted("an overlap of 1; smaller overlaps are our own reading", 0.15),
     "10.4",
     categories("Generator Video StillImage BuiltIn"),
     {vectorInput("inputCenter", "Center", "Position", {150, 150}),
      colorInput("inputColor", "Color", "", {1, 0.9, 0.8, 1}),
      numberInput("inputHaloRadius", "Halo Radius", "Distance",
                  {.value = 70, .min = 0, .sliderMin = 0, .sliderMax = 1000}),
      numberInput("inputHaloWidth", "Halo Width", "Distance",
                  {.value = 87, .min = 0, .sliderMin = 0, .sliderMax = 300}),
      numberInput("inputHaloOverlap", "Halo Overlap", "Scalar",
                  {.value = 0.77, .min = 0, .sliderMin = 0, .sliderMax = 1}),
      numberInput("inputStriationStrength", "Striation Strength", "Scalar",
                  {.value = 0.5, .min = 0, .sliderMin = 0, .sliderMax = 3}),
      numberInput("inputStriationContrast", "Striation Contrast", "Scalar",
                  {.value = 1, .min = 0, .sliderMin = 0, .sliderMax = 5}),
      numberInput("inputTime", "Time", "Scalar",
                  {.value = 0, .identity = 0, .min = 0, .max = 1, .sliderMin = 0, .sliderMax = 1})},
     build}};

} // namespace

} // namespace engine::generators
