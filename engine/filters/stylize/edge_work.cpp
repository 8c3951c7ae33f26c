#include "registry.h"

#include <color/vecmath.h>

namespace engine {

namespace {

namespace simd = color::simd;

/// White, and black where a place is clearly darker than its surroundings: where the brightness of a blur by
/// a third of the radius is less than 0.97 of that of a blur by the radius, and wholly so 1/12 lower. Alpha
/// stays. (Core Image tells of a woodcut in black and white; the formula is ours.)
Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    double radius = in.number("inputRadius", 0, 300);
    if (!image || image->extent().isEmpty()) return image;
    Image endless = clampToEdge(image);
    return combine(
        "edge work", image->extent(), {image, gaussian(endless, radius / 3), gaussian(endless, radius)},
        [](const Span* p, int n) {
            simd::run([=, r = p[0].plane[0], g = p[0].plane[1], b = p[0].plane[2], a = p[0].plane[3],
                       nearR = p[1].plane[0], nearG = p[1].plane[1], nearB = p[1].plane[2],
                       farR = p[2].plane[0], farG = p[2].plane[1], farB = p[2].plane[2]]() SIMD_INLINE {
                SIMD_LOOP
                for (int i = 0; i < n; ++i) {
                    float close = 0.2126f * nearR[i] + 0.7152f * nearG[i] + 0.0722f * nearB[i];
                    float wide = 0.2126f * farR[i] + 0.7152f * farG[i] + 0.0722f * farB[i];
                    // So that black is not divided by black.
                    float ratio = (close + 1e-3f) / (simd::max(wide, 0) + 1e-3f);
                    r[i] = g[i] = b[i] = a[i] * simd::unit(1 + 12 * (ratio - 0.97f));
                }
            });
        });
}

const Registrar filter{{"CIEdgeWork",
                        "Edge Work",
                        "Makes a picture look like a woodcut in black and white.",
                        "10.4",
                        categories("Stylize Video StillImage BuiltIn"),
                        {imageInput(), numberInput("inputRadius", "Radius", "Distance",
                                                   {.value = 3, .min = 0, .sliderMin = 0, .sliderMax = 20})},
                        build}};

} // namespace

} // namespace engine
