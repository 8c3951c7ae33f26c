// CIEdges: how steep colours are.
#include "filter.h"
#include "kernel.h"

namespace engine {

/// How steep each component is, by Sobel's differences; a step from 0 to 1 along an axis gives the intensity.
/// Alpha stays. (The name and the input are Core Image's; the formula is ours.)
static Image build(const Inputs& in) {
    double intensity = in.number("inputIntensity", 0, 1e6);
    return neighbourhood(in.image("inputImage"), "edges", 1, [=](const RenderContext&) -> NeighbourFunction {
        return [gain = static_cast<float>(intensity / 4)](const Pixels& around, int x, int y, int n,
                                                          const Span& out) {
            out.copy(around.at(x, y), n);
            for (int c = 0; c < 3; ++c)
                eachIndex(n, [=, p = around.at(x, y - 1).plane[c], q = around.at(x, y).plane[c],
                              r = around.at(x, y + 1).plane[c], o = out.plane[c],
                              a = out.plane[3]](int i) SIMD_INLINE {
                    float up = r[i - 1] + 2 * r[i] + r[i + 1] - p[i - 1] - 2 * p[i] - p[i + 1];
                    float across = p[i + 1] + 2 * q[i + 1] + r[i + 1] - p[i - 1] - 2 * q[i - 1] - r[i - 1];
                    o[i] = simd::min(gain * simd::sqrt(up * up + across * across), a[i]);
                });
        };
    });
}

static const Registrar filter{
    {"CIEdges",
     "Edges",
     "Shows the edges of a picture in colour.",
     ourOwn("Sobel's differences"),
     "10.4",
     categories("Stylize Video StillImage BuiltIn"),
     {imageInput(), numberInput("inputIntensity", "Intensity", "Scalar",
                                {.value = 1, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 10})},
     build}};

} // namespace engine
