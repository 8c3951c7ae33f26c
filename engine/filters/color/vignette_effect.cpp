// CIVignetteEffect: darker outside of a circle.
#include "filter.h"
#include "kernel.h"

namespace engine {

/// As it is up to the radius, and darker and darker beyond; with a falloff of 1 over half the radius, with 0
/// at once. (Our own formula; Core Image does not publish its own.)
static Image build(const Inputs& in) {
    float intensity = static_cast<float>(in.number("inputIntensity", -1, 1));
    if (intensity == 0) return in.image("inputImage");
    double radius = in.number("inputRadius", 0, 1e6);
    double fade = std::max(in.number("inputFalloff", 0, 1) * radius / 2, 1.0);
    return eachPixel(in.image("inputImage"), "vignette effect", From{in.point("inputCenter")},
                     [=, begin = static_cast<float>(radius / fade),
                      perPixel = static_cast<float>(1 / fade)](Pixel p, Position from) SIMD_INLINE {
                         float distance = simd::sqrt(from.x * from.x + from.y * from.y);
                         return p * (1 - intensity * smoothstep(distance * perPixel - begin));
                     });
}

static const Registrar filter{
    {"CIVignetteEffect",
     "Vignette Effect",
     "Darkens a picture outside of a circle.",
     "10.9",
     categories("ColorEffect Video Interlaced StillImage BuiltIn"),
     {imageInput(), vectorInput("inputCenter", "Center", "Position", {150, 150}),
      numberInput("inputRadius", "Radius", "Distance",
                  {.value = 150, .min = 0, .sliderMin = 0, .sliderMax = 2000}),
      numberInput("inputIntensity", "Intensity", "Scalar",
                  {.value = 1, .identity = 0, .min = -1, .max = 1, .sliderMin = -1, .sliderMax = 1}),
      numberInput("inputFalloff", "Falloff", "Scalar",
                  {.value = 0.5, .min = 0, .max = 1, .sliderMin = 0, .sliderMax = 1})},
     build}};

} // namespace engine
