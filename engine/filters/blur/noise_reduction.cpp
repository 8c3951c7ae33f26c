// CINoiseReduction.
#include "filter.h"
#include "kernel.h"

namespace engine {

namespace {

/// How much the surroundings count both ways, from the middle outwards: a Gaussian of 1.3 pixels.
constexpr float weights[] = {0.322f, 0.2415f, 0.0975f};

/// A pixel whose brightness is within the noise level of its surroundings is replaced by them; a larger
/// difference is an edge and is amplified by the sharpness. Between one and two times the level, one passes
/// into the other. (The surroundings are fitted to Core Image's picture with all of it noise, mean residual
/// 0.29 of 255. It distinguishes noise from edges, too; how is our own.)
Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    double level = in.number("inputNoiseLevel", 0, 1e3), sharpness = in.number("inputSharpness", 0, 100);
    if (level == 0 && sharpness == 0) return image;
    return neighbourhood(image, "noise reduction", 2, [=](const RenderContext&) -> NeighbourFunction {
        return [noise = static_cast<float>(level), perNoise = static_cast<float>(1 / std::max(level, 1e-6)),
                sharpness = static_cast<float>(sharpness)](const Pixels& around, int x, int y, int n,
                                                           const Span& out) {
            SpanBuffer difference;
            for (int c = 0; c < 4; ++c) {
                alignas(32) float columns[maxSpan + 4]; // begin two pixels before x
                eachIndex(n + 4, [m = around.at(x - 2, y).plane[c], step = around.rowStep(),
                                  to = &columns[0]](int i) SIMD_INLINE {
                    to[i] = weights[0] * m[i] + weights[1] * (m[i + step] + m[i - step]) +
                            weights[2] * (m[i + 2 * step] + m[i - 2 * step]);
                });
                eachIndex(n, [p = &columns[2], q = around.at(x, y).plane[c], o = out.plane[c],
                              d = difference.span().plane[c]](int i) SIMD_INLINE {
                    o[i] = q[i];
                    d[i] = q[i] - (weights[0] * p[i] + weights[1] * (p[i - 1] + p[i + 1]) +
                                   weights[2] * (p[i - 2] + p[i + 2]));
                });
            }
            auto changed = [=](Pixel p, Pixel difference) SIMD_INLINE {
                float bright = simd::abs(luminance(difference));
                float edge = noise > 0 ? simd::unit((bright - noise) * perNoise) : 1;
                float gain = simd::mix(-1, sharpness, edge);
                return Pixel{simd::max(p.r + gain * difference.r, 0), simd::max(p.g + gain * difference.g, 0),
                             simd::max(p.b + gain * difference.b, 0), simd::unit(p.a + gain * difference.a)};
            };
            eachPixel(n, changed, out, difference.span());
        };
    });
}

const Registrar filter{
    {"CINoiseReduction",
     "Noise Reduction",
     "Smoothes what differs little from its surroundings and sharpens what differs more.",
     fitted("the smoothing of plain noise; how noise and edges are told apart is our own", 0.29),
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
