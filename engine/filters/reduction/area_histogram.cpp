// CIAreaHistogram: how often each component has each value in an area, as a row of pixels.
#include "area_row.h"
#include "kernel.h"

#include <cmath>

namespace engine {

namespace {

/// In each component of pixel i, the share of pixels of which that component is in the i-th part of 0..1, so
/// that all pixels together have the scale. Components are straight and in the working space; values outside
/// of 0..1 count as 0 or 1. (The size, the scale and that each component is by itself are Core Image's; the
/// rest is ours.)
Image build(const Inputs& in) {
    return areaRow(in, [](const Inputs& in, const IntRect& area) -> AreaRow {
        int count = static_cast<int>(std::round(in.number("inputCount", 1, 2048)));
        return {count, in.number("inputScale", 0, 1e6) / area.count(),
                [count](RowSums& sums, int, const Span& pixels, int n) {
                    auto last = static_cast<float>(count - 1), parts = static_cast<float>(count);
                    for (int i = 0; i < n; ++i) {
                        float alpha = pixels.plane[3][i], scale = parts * unpremultiply(alpha);
                        for (int c = 0; c < 4; ++c) {
                            float part = pixels.plane[c][i] * (c < 3 ? scale : parts);
                            // NaN counts as 0.
                            ++sums[static_cast<std::size_t>(part > 0 ? std::min(part, last) : 0)][c];
                        }
                    }
                }};
    });
}

const Registrar filter{
    {"CIAreaHistogram",
     "Area Histogram",
     "Makes a row of pixels that say how often each component has each value in an area.",
     ourOwn("Core Image documents size and scale; where values are counted is our own"),
     "10.5",
     categories("Reduction Video StillImage BuiltIn"),
     {imageInput(), rowExtentInput(),
      numberInput("inputCount", "Count", "Scalar",
                  {.value = 64, .min = 1, .max = 2048, .sliderMin = 10, .sliderMax = 1000}),
      numberInput("inputScale", "Scale", "Scalar", {.value = 1, .min = 0, .sliderMin = 0, .sliderMax = 1})},
     build}};

} // namespace

} // namespace engine
