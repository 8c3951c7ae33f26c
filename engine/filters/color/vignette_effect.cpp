// CIVignetteEffect: darker outside of a circle.
#include "filter.h"
#include "kernel.h"

namespace engine {

/// The picture times (1 - intensity * f)^2.2, so that about its coded colours lose that much. f rises from 0
/// to 1, as 6 t^5 - 15 t^4 + 10 t^3, and is 1/2 at 0.991 of the radius. With a falloff of 0.5 it does so from
/// the centre to twice that (fitted to Core Image's picture: mean residual 0.08 of 255). No picture of
/// another falloff is known; here it sets the width of the rise, from a hard edge at 0 to one that ends at
/// three times the radius.
static Image build(const Inputs& in) {
    float intensity = static_cast<float>(in.number("inputIntensity", -1, 1));
    if (intensity == 0) return in.image("inputImage");
    double radius = 0.991 * in.number("inputRadius", 0, 1e6),
           spread = 2 * in.number("inputFalloff", 0, 1) * radius;
    double begin = std::max(radius - spread, 0.0), end = std::max(radius + spread, begin + 1);
    return eachPixel(in.image("inputImage"), "vignette effect", From{in.point("inputCenter")},
                     [=, start = static_cast<float>(begin),
                      perPixel = static_cast<float>(1 / (end - begin))](Pixel p, Position from) SIMD_INLINE {
                         float distance = simd::sqrt(from.x * from.x + from.y * from.y);
                         float t = simd::unit((distance - start) * perPixel);
                         float f = t * t * t * (t * (6 * t - 15) + 10);
                         return p * simd::pow(1 - intensity * f, 2.2f);
                     });
}

static const Registrar filter{
    {"CIVignetteEffect",
     "Vignette Effect",
     "Darkens a picture outside of a circle.",
     fitted("a falloff of 0.5; other falloffs are our own", 0.08),
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
