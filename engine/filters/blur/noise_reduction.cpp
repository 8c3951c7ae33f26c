#include "registry.h"

#include <color/vecmath.h>

namespace engine {

namespace {

namespace simd = color::simd;

/// Where the brightness of a pixel is within the noise level of that of its surroundings, they take its
/// place; where it differs by more, the difference is an edge and grows by the sharpness. Between the level
/// and twice the level the one passes into the other. The surroundings are 3 by 3 pixels with the weights 1 2
/// 1 both ways. (What is noise and what an edge is Core Image's distinction; the formula is ours.)
Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    double level = in.number("inputNoiseLevel", 0, 1e3), sharpness = in.number("inputSharpness", 0, 100);
    if (level == 0 && sharpness == 0) return image;
    return neighbourhood(image, "noise reduction", 1, [=](const RenderContext&) -> NeighbourFunction {
        return [noise = static_cast<float>(level), perNoise = static_cast<float>(1 / std::max(level, 1e-6)),
                sharpness = static_cast<float>(sharpness)](const Pixels& around, int x, int y, int n,
                                                           const Span& out) {
            alignas(32) float difference[4][maxSpan];
            for (int c = 0; c < 4; ++c)
                simd::run([=, p = around.at(x, y - 1).plane[c], q = around.at(x, y).plane[c],
                           r = around.at(x, y + 1).plane[c], o = out.plane[c], d = difference[c]]()
                              SIMD_INLINE {
                                  SIMD_LOOP
                                  for (int i = 0; i < n; ++i) {
                                      float corners = p[i - 1] + p[i + 1] + r[i - 1] + r[i + 1];
                                      float sides = p[i] + q[i - 1] + q[i + 1] + r[i];
                                      o[i] = q[i];
                                      d[i] = q[i] - (corners + 2 * sides + 4 * q[i]) * 0.0625f;
                                  }
                              });
            simd::run([=, dr = difference[0], dg = difference[1], db = difference[2], da = difference[3],
                       r = out.plane[0], g = out.plane[1], b = out.plane[2], a = out.plane[3]]() SIMD_INLINE {
                SIMD_LOOP
                for (int i = 0; i < n; ++i) {
                    float bright = simd::abs(0.2126f * dr[i] + 0.7152f * dg[i] + 0.0722f * db[i]);
                    float edge = noise > 0 ? simd::unit((bright - noise) * perNoise) : 1;
                    float gain = simd::mix(-1, sharpness, edge);
                    a[i] = simd::unit(a[i] + gain * da[i]);
                    r[i] = simd::max(r[i] + gain * dr[i], 0);
                    g[i] = simd::max(g[i] + gain * dg[i], 0);
                    b[i] = simd::max(b[i] + gain * db[i], 0);
                }
            });
        };
    });
}

const Registrar filter{
    {"CINoiseReduction",
     "Noise Reduction",
     "Smoothes what differs little from its surroundings and sharpens what differs more.",
     "10.4",
     categories("Blur Video StillImage BuiltIn"),
     {imageInput(),
      numberInput("inputNoiseLevel", "Noise Level", "Scalar",
                  {.value = 0.02, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 0.1}),
      numberInput("inputSharpness", "Sharpness", "Scalar",
                  {.value = 0.4, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 2})},
     build}};

} // namespace

} // namespace engine
