// CIPageCurlWithShadowTransition: a page that curls up and casts a shadow.
#include "page.h"

namespace engine::transitions {

namespace {

/// As black as the picture is opaque.
Image shadowOf(const Image& picture, double amount) {
    return eachPixel(picture, "page shadow", [amount = static_cast<float>(amount)](Pixel p) SIMD_INLINE {
        return Pixel{0, 0, 0, simd::unit(p.a) * amount};
    });
}

/// The curled part casts a shadow on the flat one and on the target, as soft as the share `inputShadowSize`
/// of its radius. The geometry is that of CIPageCurlTransition; the shadow is our own: no picture is known.
Image build(const Inputs& in) {
    Image image = in.image("inputImage"), target = in.image("inputTargetImage"),
          back = in.image("inputBacksideImage");
    if (!image) return nullptr;
    if (time(in) == 0) return image;
    if (time(in) == 1) return target ? target : empty();
    Curl curl(in, pageExtent(in, image));
    auto radius = static_cast<float>(curl.radius);
    Image above = onLayer(back ? back : image, curl, UpperLayer{radius}),
          below = composite(onLayer(image, curl, LowerLayer{radius}), target);
    Rect shaded = in.rect("inputShadowExtent");
    if (shaded.isEmpty()) shaded = curl.extent;
    double sigma = in.number("inputShadowSize", 0, 1) * curl.radius / 2;
    Image shadow = gaussian(
        crop(shadowOf(above, in.number("inputShadowAmount", 0, 1)), shaded.grown(3 * sigma, 3 * sigma)),
        sigma);
    Rect extent = target ? image->extent().unite(target->extent()) : image->extent();
    return crop(composite(above, atop(crop(shadow, shaded), below)), extent);
}

const Registrar filter{{"CIPageCurlWithShadowTransition",
                        "Page Curl With Shadow",
                        "Curls a picture up like a page with a shadow, and shows the one below it.",
                        ourOwn("the geometry of CIPageCurlTransition; the shadow is our own"),
                        "10.9",
                        categories("Transition Video StillImage BuiltIn"),
                        {imageInput(), targetInput(), backsideInput(),
                         vectorInput("inputExtent", "Extent", "Rectangle", {0, 0, 0, 0}), timeInput(),
                         curlAngleInput(), curlRadiusInput(),
                         numberInput("inputShadowSize", "Shadow Size", "Distance",
                                     {.value = 0.5, .min = 0, .max = 1, .sliderMin = 0, .sliderMax = 1}),
                         numberInput("inputShadowAmount", "Shadow Amount", "Distance",
                                     {.value = 0.7, .min = 0, .max = 1, .sliderMin = 0, .sliderMax = 1}),
                         vectorInput("inputShadowExtent", "Shadow Extent", "Rectangle", {0, 0, 0, 0})},
                        build}};

} // namespace

} // namespace engine::transitions
