// CIMedianFilter.
#include "filter.h"
#include "kernel.h"

namespace engine {

namespace {

SIMD_INLINE inline void sort(float& low, float& high) {
    float a = low;
    low = simd::min(a, high);
    high = simd::max(a, high);
}

/// The fifth of nine, by 19 exchanges (J. L. Smith, "Implementing median filters
/// in XC4000E FPGAs", 1996).
SIMD_INLINE inline float median(float a, float b, float c, float d, float e, float f, float g, float h,
                                float i) {
    sort(b, c), sort(e, f), sort(h, i);
    sort(a, b), sort(d, e), sort(g, h);
    sort(b, c), sort(e, f), sort(h, i);
    sort(a, d), sort(f, i), sort(e, h);
    sort(d, g), sort(b, e), sort(c, f);
    sort(e, h), sort(e, c), sort(g, e), sort(e, c);
    return e;
}

/// The median of the 3 by 3 pixels around a pixel, each component by itself. Premultiplied colours stay
/// within their alpha: if no colour of nine exceeds its alpha, nor does the median colour exceed the median
/// alpha.
Image build(const Inputs& in) {
    return neighbourhood(in.image("inputImage"), "median", 1, [](const RenderContext&) -> NeighbourFunction {
        return [](const Pixels& around, int x, int y, int n, const Span& out) {
            for (int c = 0; c < 4; ++c)
                eachIndex(n, [p = around.at(x, y - 1).plane[c], q = around.at(x, y).plane[c],
                              r = around.at(x, y + 1).plane[c], o = out.plane[c]](int i) SIMD_INLINE {
                    o[i] =
                        median(p[i - 1], p[i], p[i + 1], q[i - 1], q[i], q[i + 1], r[i - 1], r[i], r[i + 1]);
                });
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
