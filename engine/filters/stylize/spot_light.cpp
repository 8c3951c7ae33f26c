// CISpotLight: a lamp that points at a place of the picture.
#include "filter.h"
#include "kernel.h"

#include <cmath>

namespace engine {

/// The picture lies at height 0 and is lit from a place above it. What the light's axis meets shines with its
/// brightness; elsewhere the light falls off with the cosine of the angle to the axis, to the power of 1 over
/// the concentration, so that a large one lights everything alike. (The inputs are Core Image's; the formula
/// is ours.)
static Image build(const Inputs& in) {
    Numbers from = in.vector("inputLightPosition", 3), to = in.vector("inputLightPointsAt", 3);
    for (Numbers* place : {&from, &to})
        for (double& v : *place) v = std::clamp(v, -1e6, 1e6);
    double concentration = in.number("inputConcentration", 0.001, 1e3);
    double brightness = in.number("inputBrightness", 0, 1e3);
    Color color = in.color("inputColor");
    double dx = to[0] - from[0], dy = to[1] - from[1], dz = to[2] - from[2], length = std::hypot(dx, dy, dz);
    // A light that points at itself points downwards.
    if (length == 0) dz = -1, length = 1;
    return eachPixel(
        in.image("inputImage"), "spot light", From{{from[0], from[1]}}, [=](const RenderContext& context) {
            return [light = pixel(context.color(color)) * static_cast<float>(brightness),
                    height = static_cast<float>(from[2]), ax = static_cast<float>(dx / length),
                    ay = static_cast<float>(dy / length), az = static_cast<float>(dz / length),
                    power = static_cast<float>(1 / concentration)](Pixel p, Position at) SIMD_INLINE {
                float far = simd::sqrt(at.x * at.x + at.y * at.y + height * height);
                float cosine = (at.x * ax + at.y * ay - height * az) / simd::max(far, 1e-6f);
                float lit = simd::pow(simd::min(cosine, 1), power);
                return eachColor(p, light, [=](float v, float l) SIMD_INLINE { return v * (l * lit); });
            };
        });
}

static const Registrar filter{
    {"CISpotLight",
     "Spot Light",
     "Lights a picture with a lamp that points at a place of it.",
     ourOwn("the cosine of the angle to the lamp's axis, to a power"),
     "10.4",
     categories("Stylize Video StillImage BuiltIn"),
     {imageInput(), vectorInput("inputLightPosition", "Light Position", "Position3", {400, 600, 150}),
      vectorInput("inputLightPointsAt", "Light Points At", "Position3", {200, 200, 0}),
      numberInput("inputBrightness", "Brightness", "Distance",
                  {.value = 3, .identity = 1, .min = 0, .sliderMin = 0, .sliderMax = 10}),
      numberInput("inputConcentration", "Concentration", "Scalar",
                  {.value = 0.1, .identity = 20, .min = 0.001, .sliderMin = 0.001, .sliderMax = 1.5}),
      colorInput("inputColor", "Color", "OpaqueColor", {1, 1, 1, 1})},
     build}};

} // namespace engine
