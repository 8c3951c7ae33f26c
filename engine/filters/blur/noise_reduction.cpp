// CINoiseReduction.
#include "filter.h"
#include "kernel.h"

namespace engine {

namespace {

/// A pixel whose brightness is within the noise level of its surroundings is replaced by them; a larger
/// difference is an edge and is amplified by the sharpness. Between one and two times the level, one passes
/// into the other. The surroundings are 3 by 3 pixels with the weights 1 2 1 both ways. (Core Image
/// distinguishes noise from edges, too; the formula is ours.)
Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    double level = in.number("inputNoiseLevel", 0, 1e3), sharpness = in.number("inputSharpness", 0, 100);
    if (level == 0 && sharpness == 0) return image;
    return neighbourhood(image, "noise reduction", 1, [=](const RenderContext&) -> NeighbourFunction {
        return [noise = static_cast<float>(level), perNoise = static_cast<float>(1 / std::max(level, 1e-6)),
                sharpness = static_cast<float>(sharpness)](const Pixels& around, int x, int y, int n,
                                                           const Span& out) {
            SpanBuffer difference;
            for (int c = 0; c < 4; ++c)
                eachIndex(n, [p = around.at(x, y - 1).plane[c], q = around.at(x, y).plane[c],
                              r = around.at(x, y + 1).plane[c], o = out.plane[c],
                              d = difference.span().plane[c]](int i) SIMD_INLINE {
                    float corners = p[i - 1] + p[i + 1] + r[i - 1] + r[i + 1];
                    float sides = p[i] + q[i - 1] + q[i + 1] + r[i];
                    o[i] = q[i];
                    d[i] = q[i] - (corners + 2 * sides + 4 * q[i]) * 0.0625f;
                });
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
