// CISharpenLuminance: sharper brightness, the same colours.
#include "filter.h"
#include "kernel.h"

namespace engine {

/// All three components grow by `sharpness` times the difference of the brightness from that of a Gaussian
/// blur, so that their own differences, which are the colour, stay. Beyond the edge the picture continues as
/// its edge, and transparent places have no part in the blur. (Public
/// definition; that it is so in linear light, with the radius as the blur's sigma, is fitted to Core Image's
/// picture: mean residual 0.62 of 255 once its blur of coded colours is allowed for.)
static Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    double radius = in.number("inputRadius", 0, 1e6), sharpness = in.number("inputSharpness", -100, 100);
    if (!image || radius == 0 || sharpness == 0) return image;
    return eachPixel("sharpen luminance", image->extent(), {image, gaussian(clampToEdge(image), radius)},
                     [gain = static_cast<float>(sharpness)](Pixel p, Pixel blurred) SIMD_INLINE {
                         float around = p.a * unpremultiply(blurred.a) * luminance(blurred);
                         float add = gain * (luminance(p) - around);
                         return eachColor(p, [=](float v) SIMD_INLINE { return v + add; });
                     });
}

static const Registrar filter{{"CISharpenLuminance",
                               "Sharpen Luminance",
                               "Sharpens the brightness of a picture and leaves its colours.",
                               fitted("the difference from a Gaussian blur, added to all components alike "
                                      "(the residual is that of coded colours, as in the picture)",
                                      0.62),
                               "10.4",
                               categories("Sharpen Video StillImage BuiltIn"),
                               {imageInput(),
                                numberInput("inputSharpness", "Sharpness", "Scalar",
                                            {.value = 0.4, .identity = 0, .sliderMin = 0, .sliderMax = 2}),
                                numberInput("inputRadius", "Radius", "Scalar",
                                            {.value = 1.69, .identity = 0, .sliderMin = 0, .sliderMax = 20})},
                               build}};

} // namespace engine
