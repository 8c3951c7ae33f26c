// CILenticularHaloGenerator: a ring of light, as a lens shows it around a lamp.
#include "rays.h"

namespace engine::generators {

namespace {

/// A ring of rays from the radius outwards, as wide as the width. Its brightness rises and falls as t^2 (3 -
/// 2 t), and at strength and contrast 1 the mean of its rays is one half, as measured on Core Image (whose
/// rays differ). Where the overlap is less than 1, red lies that much farther out than green, and blue
/// farther in.
Image build(const Inputs& in) {
    double radius = in.number("inputHaloRadius", 0, 1e5),
           width = std::max(in.number("inputHaloWidth", 0, 1e5), 0.5);
    double apart = (1 - in.number("inputHaloOverlap", 0, 1)) * width;
    return light(
        "halo", in, radius + width + apart,
        [=, rays = Rays(in), begin = static_cast<float>(radius + apart), step = static_cast<float>(apart),
         perWidth = static_cast<float>(1 / width)](float distance, float turns, float component) SIMD_INLINE {
            float across = (distance - begin + component * step) * perWidth;
            return smoothstep(1 - simd::abs(2 * across - 1)) * rays.at(turns);
        });
}

const Registrar filter{
    {"CILenticularHaloGenerator",
     "Lenticular Halo",
     "Makes a ring of light, as a lens shows it around a lamp.",
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
