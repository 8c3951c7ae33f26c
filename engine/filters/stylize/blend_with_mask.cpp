#include "registry.h"

#include <color/vecmath.h>

namespace engine {

namespace {

/// image * m + background * (1 - m), with m from 0 to 1.
template <class Amount>
void mixByMask(const Span* s, int n) {
    namespace simd = color::simd;
    const Span &image = s[0], &background = s[1], &mask = s[2];
    for (int c = 0; c < 4; ++c)
        simd::run([=, d = image.plane[c], other = background.plane[c], r = mask.plane[0], g = mask.plane[1],
                   b = mask.plane[2], a = mask.plane[3]]() SIMD_INLINE {
            SIMD_LOOP
            for (int i = 0; i < n; ++i)
                d[i] = simd::mix(other[i], d[i], simd::unit(Amount::of(r[i], g[i], b[i], a[i])));
        });
}

/// The light of the mask, so that a soft edge is as soft as the picture's own light.
struct Luminance {
    SIMD_INLINE static float of(float r, float g, float b, float) {
        return 0.2126f * r + 0.7152f * g + 0.0722f * b;
    }
};
struct Alpha {
    SIMD_INLINE static float of(float, float, float, float a) { return a; }
};

/// Where there is no mask the background shows, and what is missing of the pictures is clear.
template <class Amount>
Image build(const Inputs& in) {
    Image image = in.image("inputImage"), background = in.image("inputBackgroundImage");
    Image mask = in.image("inputMaskImage");
    if (!mask || (!image && !background)) return nullptr;
    if (!image) image = empty();
    Rect extent = image->extent().intersect(mask->extent());
    if (background) extent = extent.unite(background->extent());
    return combine("blend with mask", extent, {image, background, mask}, mixByMask<Amount>);
}

FilterInfo info(const char* name, const char* displayName, const char* description, const char* since,
                Image (*build)(const Inputs&)) {
    return {name,
            displayName,
            description,
            since,
            categories("Stylize Video StillImage BuiltIn"),
            {imageInput(), imageInput("inputBackgroundImage", "Background Image"),
             imageInput("inputMaskImage", "Mask Image")},
            build};
}

const Registrar withMask{info("CIBlendWithMask", "Blend With Mask",
                              "Shows a picture where a gray mask is white and another where it is black.",
                              "10.4", build<Luminance>)};
const Registrar withAlphaMask{info("CIBlendWithAlphaMask", "Blend With Alpha Mask",
                                   "Shows a picture where a mask is opaque and another where it is clear.",
                                   "10.9", build<Alpha>)};

} // namespace

} // namespace engine
