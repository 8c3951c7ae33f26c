// CIMedianFilter.
#include "filter.h"
#include "kernel.h"

namespace engine {

namespace {

SIMD_INLINE inline float middle(float a, float b, float c) {
    return simd::max(simd::min(a, b), simd::min(simd::max(a, b), c));
}

/// The median of the 3 by 3 pixels around a pixel, each component by itself. Premultiplied colours stay
/// within their alpha: if no colour of nine exceeds its alpha, nor does the median colour exceed the median
/// alpha.
Image build(const Inputs& in) {
    return neighbourhood(in.image("inputImage"), "median", 1, [](const RenderContext&) -> NeighbourFunction {
        return [](const Pixels& around, int x, int y, int n, const Span& out) {
            // Each column of three is sorted once for the three pixels that it is part of. The median is the
            // middle one of the largest low, the middle middle and the smallest high one.
            alignas(32) float low[maxSpan + 2], half[maxSpan + 2], high[maxSpan + 2];
            for (int c = 0; c < 4; ++c) {
                eachIndex(n + 2, [=, p = around.at(x - 1, y - 1).plane[c], q = around.at(x - 1, y).plane[c],
                                  r = around.at(x - 1, y + 1).plane[c], low = low, half = half,
                                  high = high](int i) SIMD_INLINE {
                    float less = simd::min(p[i], q[i]), more = simd::max(p[i], q[i]);
                    float rest = simd::min(more, r[i]);
                    low[i] = simd::min(less, r[i]);
                    half[i] = simd::max(less, rest);
                    high[i] = simd::max(more, r[i]);
                });
                eachIndex(n, [=, low = low, half = half, high = high, o = out.plane[c]](int i) SIMD_INLINE {
                    o[i] = middle(simd::max(low[i], simd::max(low[i + 1], low[i + 2])),
                                  middle(half[i], half[i + 1], half[i + 2]),
                                  simd::min(high[i], simd::min(high[i + 1], high[i + 2])));
                });
            }
        };
    });
}

const Registrar filter{{"CIMedianFilter",
                        "Median",
                        "Takes out specks by the median of the pixels around each pixel.",
                        publicDefinition("the median of 3 by 3 pixels"),
                        "10.4",
                        categories("Blur Video StillImage BuiltIn"),
                        {imageInput()},
                        build}};

} // namespace

} // namespace engine
