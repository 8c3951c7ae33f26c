#include "registry.h"

#include <color/vecmath.h>

namespace engine {

/// Each component of the straight colour is kept between two limits; the upper one wins.
static Image build(const Inputs& in) {
    std::array<float, 4> low, high;
    Numbers least = in.vector("inputMinComponents", 4), most = in.vector("inputMaxComponents", 4);
    std::transform(least.begin(), least.end(), low.begin(), [](double v) { return static_cast<float>(v); });
    std::transform(most.begin(), most.end(), high.begin(), [](double v) { return static_cast<float>(v); });
    return pointStep(in.image("inputImage"), "color clamp", [=](const RenderContext&) -> SpanFunction {
        return [=](const Span& s, int, int, int n) {
            namespace simd = color::simd;
            simd::run([=, r = s.plane[0], g = s.plane[1], b = s.plane[2], a = s.plane[3]]() SIMD_INLINE {
                SIMD_LOOP
                for (int i = 0; i < n; ++i) {
                    float inverse = a[i] > 0 ? 1 / a[i] : 0;
                    float alpha = simd::clamp(a[i], low[3], high[3]);
                    r[i] = alpha * simd::clamp(r[i] * inverse, low[0], high[0]);
                    g[i] = alpha * simd::clamp(g[i] * inverse, low[1], high[1]);
                    b[i] = alpha * simd::clamp(b[i] * inverse, low[2], high[2]);
                    a[i] = alpha;
                }
            });
        };
    });
}

static const Registrar filter{
    {"CIColorClamp",
     "Color Clamp",
     "Keeps each colour component between two limits.",
     "10.9",
     categories("ColorAdjustment Video Interlaced NonSquarePixels StillImage BuiltIn"),
     {imageInput(), vectorInput("inputMinComponents", "Min Components", "", {0, 0, 0, 0}),
      vectorInput("inputMaxComponents", "Max Components", "", {1, 1, 1, 1})},
     build}};

} // namespace engine
