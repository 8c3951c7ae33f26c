#include "registry.h"

#include <color/vecmath.h>

#include <cmath>

namespace engine {

namespace {

namespace simd = color::simd;

/// The picture lies at height 0 and is lit from a place above it. What the light's axis meets shines with its
/// brightness; elsewhere the light falls off with the cosine of the angle to the axis, to the power of 1 over
/// the concentration, so that a large one lights everything alike. (The inputs are Core Image's; the formula
/// is ours.)
Image build(const Inputs& in) {
    Numbers from = in.vector("inputLightPosition", 3), to = in.vector("inputLightPointsAt", 3);
    for (Numbers* place : {&from, &to})
        for (double& v : *place) v = std::clamp(v, -1e6, 1e6);
    double concentration = in.number("inputConcentration", 0.001, 1e3);
    double brightness = in.number("inputBrightness", 0, 1e3);
    Color color = in.color("inputColor");
    double dx = to[0] - from[0], dy = to[1] - from[1], dz = to[2] - from[2], length = std::hypot(dx, dy, dz);
    // A light that points at itself points downwards.
    if (length == 0) dz = -1, length = 1;
    return pointStep(in.image("inputImage"), "spot light", [=](const RenderContext& context) -> SpanFunction {
        Rgba light = context.color(color);
        for (float& v : light) v *= static_cast<float>(brightness);
        return [=, x0 = from[0], y0 = from[1], height = static_cast<float>(from[2]),
                ax = static_cast<float>(dx / length), ay = static_cast<float>(dy / length),
                az = static_cast<float>(dz / length),
                power = static_cast<float>(1 / concentration)](const Span& s, int x, int y, int n) {
            float left = static_cast<float>(x + 0.5 - x0), py = static_cast<float>(y + 0.5 - y0);
            simd::run([=, r = s.plane[0], g = s.plane[1], b = s.plane[2]]() SIMD_INLINE {
                SIMD_LOOP
                for (int i = 0; i < n; ++i) {
                    float px = left + static_cast<float>(i);
                    float far = simd::sqrt(px * px + py * py + height * height);
                    float cosine = (px * ax + py * ay - height * az) / simd::max(far, 1e-6f);
                    float lit = simd::pow(simd::min(cosine, 1), power);
                    r[i] *= light[0] * lit;
                    g[i] *= light[1] * lit;
                    b[i] *= light[2] * lit;
                }
            });
        };
    });
}

const Registrar filter{
    {"CISpotLight",
     "Spot Light",
     "Lights a picture with a lamp that points at a place of it.",
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

} // namespace

} // namespace engine
