// CIBlendWithRedMask and CIBlendWithBlueMask: two pictures by one component of a mask.
#include "filter.h"
#include "kernel.h"

namespace engine {

namespace {

/// image * m + background * (1 - m), with the mask's premultiplied component m, limited to 0..1: the public
/// definition of the filters with a gray mask, of one component. Where there is no mask the background shows.
template <float Pixel::*component>
Image build(const Inputs& in) {
    Image image = in.image("inputImage"), background = in.image("inputBackgroundImage");
    Image mask = in.image("inputMaskImage");
    if (!mask || (!image && !background)) return nullptr;
    Rect extent = image ? image->extent().intersect(mask->extent()) : Rect{};
    if (background) extent = extent.unite(background->extent());
    return eachPixel("blend with channel mask", extent, {image, background, mask},
                     [](Pixel p, Pixel q, Pixel m)
                         SIMD_INLINE { return mix(q, p, simd::unit(m.*component)); });
}

FilterInfo info(const char* name, const char* displayName, const char* description, Source source,
                Image (*build)(const Inputs&)) {
    return {name,
            displayName,
            description,
            source,
            "10.13",
            categories("Stylize Video StillImage BuiltIn"),
            {imageInput(), imageInput("inputBackgroundImage", "Background Image"),
             imageInput("inputMaskImage", "Mask Image")},
            build};
}

const Registrar red{info("CIBlendWithRedMask", "Blend With Red Mask",
                         "Shows a picture where a mask is red and another where it is not.",
                         publicDefinition("image * m + background * (1 - m)"), build<&Pixel::r>)};
const Registrar blue{info("CIBlendWithBlueMask", "Blend With Blue Mask",
                          "Shows a picture where a mask is blue and another where it is not.",
                          publicDefinition("image * m + background * (1 - m)"), build<&Pixel::b>)};

} // namespace

} // namespace engine
