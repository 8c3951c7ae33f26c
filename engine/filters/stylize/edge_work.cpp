// CIEdgeWork: a woodcut in black and white.
#include "filter.h"
#include "kernel.h"

namespace engine {

/// White, and black where a place is clearly darker than its surroundings: where the brightness of a blur by
/// a third of the radius is less than 0.97 of that of a blur by the radius, and wholly so 1/12 lower. Alpha
/// stays. (Core Image promises a woodcut in black and white; the formula is ours.)
static Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    double radius = in.number("inputRadius", 0, 300);
    if (!image || image->extent().isEmpty()) return image;
    Image endless = clampToEdge(image);
    return eachPixel("edge work", image->extent(),
                     {image, gaussian(endless, radius / 3), gaussian(endless, radius)},
                     [](Pixel p, Pixel close, Pixel wide) SIMD_INLINE {
                         // So that black is not divided by black.
                         float ratio = (luminance(close) + 1e-3f) / (simd::max(luminance(wide), 0) + 1e-3f);
                         return gray(p.a * simd::unit(1 + 12 * (ratio - 0.97f)), p.a);
                     });
}

static const Registrar filter{
    {"CIEdgeWork",
     "Edge Work",
     "Makes a picture look like a woodcut in black and white.",
     ourOwn("the difference of two blurs, cut off"),
     "10.4",
     categories("Stylize Video StillImage BuiltIn"),
     {imageInput(), numberInput("inputRadius", "Radius", "Distance",
                                {.value = 3, .min = 0, .sliderMin = 0, .sliderMax = 20})},
     build}};

} // namespace engine
