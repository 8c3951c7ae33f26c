// The largest or the smallest of a pixel's three components, as gray.
#include "registry.h"

#include <color/vecmath.h>

namespace engine {

namespace {

namespace simd = color::simd;

struct Largest {
    SIMD_INLINE static float of(float x, float y) { return simd::max(x, y); }
};
struct Smallest {
    SIMD_INLINE static float of(float x, float y) { return simd::min(x, y); }
};

template <class Pick>
Image build(const Inputs& in) {
    return pointStep(in.image("inputImage"), "extreme component", [](const RenderContext&) -> SpanFunction {
        return [](const Span& s, int, int, int n) {
            simd::run([=, r = s.plane[0], g = s.plane[1], b = s.plane[2]]() SIMD_INLINE {
                SIMD_LOOP
                for (int i = 0; i < n; ++i) r[i] = g[i] = b[i] = Pick::of(r[i], Pick::of(g[i], b[i]));
            });
        };
    });
}

FilterInfo info(const char* name, const char* displayName, const char* description,
                Image (*build)(const Inputs&)) {
    return {name,
            displayName,
            description,
            "10.5",
            categories("ColorEffect Video Interlaced NonSquarePixels StillImage BuiltIn"),
            {imageInput()},
            build};
}

const Registrar maximum{info("CIMaximumComponent", "Maximum Component",
                             "Makes a gray picture of the largest component of each pixel.", build<Largest>)};
const Registrar minimum{info("CIMinimumComponent", "Minimum Component",
                             "Makes a gray picture of the smallest component of each pixel.",
                             build<Smallest>)};

} // namespace

} // namespace engine
