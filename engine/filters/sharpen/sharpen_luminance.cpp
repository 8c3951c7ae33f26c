#include "registry.h"

#include <color/vecmath.h>

namespace engine {

namespace {

namespace simd = color::simd;

/// All three components grow by `sharpness` times what the brightness differs from that of a Gaussian blur,
/// so that their differences, which are the colour, stay. What is beyond the edge is taken to be like the
/// edge, and what is transparent has no part in the blur.
Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    double radius = in.number("inputRadius", 0, 1e6), sharpness = in.number("inputSharpness", -100, 100);
    if (!image || radius == 0 || sharpness == 0) return image;
    return combine("sharpen luminance", image->extent(), {image, gaussian(clampToEdge(image), radius)},
                   [gain = static_cast<float>(sharpness)](const Span* pixels, int n) {
                       simd::run([=, r = pixels[0].plane[0], g = pixels[0].plane[1], b = pixels[0].plane[2],
                                  a = pixels[0].plane[3], br = pixels[1].plane[0], bg = pixels[1].plane[1],
                                  bb = pixels[1].plane[2], ba = pixels[1].plane[3]]() SIMD_INLINE {
                           SIMD_LOOP
                           for (int i = 0; i < n; ++i) {
                               float share = a[i] / simd::max(ba[i], 1e-6f);
                               float bright = 0.2126f * r[i] + 0.7152f * g[i] + 0.0722f * b[i];
                               float blurred = 0.2126f * br[i] + 0.7152f * bg[i] + 0.0722f * bb[i];
                               float add = gain * (bright - share * blurred);
                               r[i] += add;
                               g[i] += add;
                               b[i] += add;
                           }
                       });
                   });
}

const Registrar filter{{"CISharpenLuminance",
                        "Sharpen Luminance",
                        "Sharpens the brightness of a picture and leaves its colours.",
                        "10.4",
                        categories("Sharpen Video StillImage BuiltIn"),
                        {imageInput(),
                         numberInput("inputSharpness", "Sharpness", "Scalar",
                                     {.value = 0.4, .identity = 0, .sliderMin = 0, .sliderMax = 2}),
                         numberInput("inputRadius", "Radius", "Scalar",
                                     {.value = 1.69, .identity = 0, .sliderMin = 0, .sliderMax = 20})},
                        build}};

} // namespace

} // namespace engine
