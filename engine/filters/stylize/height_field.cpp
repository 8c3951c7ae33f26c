#include "registry.h"

#include <color/vecmath.h>

namespace engine {

namespace {

namespace simd = color::simd;

/// The mask blurred and cut out by itself again and again, each time with half the radius before: what is
/// outside stays black, what is inside rises from the edge to the middle. Alpha is the mask's. Found so on a
/// picture of Core Image's, of which it differs by half a step of 255 in the mean.
Image build(const Inputs& in) {
    Image mask = in.image("inputImage"), field = mask;
    double radius = in.number("inputRadius", 0, 300);
    if (!mask || mask->extent().isEmpty()) return mask;
    for (; radius > 0.7; radius /= 2)
        field = combine("height field", mask->extent(), {mask, gaussian(clampToEdge(field), radius)},
                        [](const Span* pixels, int n) {
                            for (int c = 0; c < 3; ++c)
                                simd::run([=, m = pixels[0].plane[c], h = pixels[1].plane[c],
                                           a = pixels[1].plane[3]]() SIMD_INLINE {
                                    SIMD_LOOP
                                    for (int i = 0; i < n; ++i) m[i] *= h[i] / simd::max(a[i], 1e-6f);
                                });
                        });
    return field;
}

const Registrar filter{
    {"CIHeightFieldFromMask",
     "Height Field From Mask",
     "Makes heights of a mask that rise from its edges, as clay would.",
     "10.4",
     categories("Stylize Video StillImage BuiltIn"),
     {imageInput(), numberInput("inputRadius", "Radius", "Distance",
                                {.value = 10, .identity = 10, .min = 0, .sliderMin = 0, .sliderMax = 300})},
     build}};

} // namespace

} // namespace engine
