// CIBlendWithMask, CIBlendWithAlphaMask: one picture shows where a mask has it so, another elsewhere.
#include "filter.h"
#include "kernel.h"

namespace engine {

namespace {

/// The light of the mask, so that a soft edge is as soft as the picture's own light.
SIMD_INLINE inline float byLight(Pixel mask) { return luminance(mask); }
SIMD_INLINE inline float byAlpha(Pixel mask) { return mask.a; }

/// image * m + background * (1 - m), with m from 0 to 1: the public definition. Without a mask the background
/// shows, and a missing picture is clear.
template <float (*amount)(Pixel mask)>
Image build(const Inputs& in) {
    Image image = in.image("inputImage"), background = in.image("inputBackgroundImage");
    Image mask = in.image("inputMaskImage");
    if (!mask || (!image && !background)) return nullptr;
    if (!image) image = empty();
    Rect extent = image->extent().intersect(mask->extent());
    if (background) extent = extent.unite(background->extent());
    return eachPixel("blend with mask", extent, {image, background, mask},
                     [](Pixel p, Pixel q, Pixel m) SIMD_INLINE { return mix(q, p, simd::unit(amount(m))); });
}

FilterInfo info(const char* name, const char* displayName, const char* description, Source source,
                const char* since, Image (*build)(const Inputs&)) {
    return {name,
            displayName,
            description,
            source,
            since,
            categories("Stylize Video StillImage BuiltIn"),
            {imageInput(), imageInput("inputBackgroundImage", "Background Image"),
             imageInput("inputMaskImage", "Mask Image")},
            build};
}

const Registrar withMask{info("CIBlendWithMask", "Blend With Mask",
                              "Shows a picture where a gray mask is white and another where it is black.",
                              publicDefinition("image * m + background * (1 - m)"), "10.4", build<byLight>)};
const Registrar withAlphaMask{info("CIBlendWithAlphaMask", "Blend With Alpha Mask",
                                   "Shows a picture where a mask is opaque and another where it is clear.",
                                   publicDefinition("image * m + background * (1 - m)"), "10.9",
                                   build<byAlpha>)};

} // namespace

} // namespace engine
