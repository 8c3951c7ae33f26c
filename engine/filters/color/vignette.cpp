// CIVignette: darker towards the corners.
#include "filter.h"
#include "kernel.h"

namespace engine {

/// The picture times (1 - q)^(2.4 intensity), where q is the square of the distance from the middle, 0 there
/// and radius / (radius + 6.2) in the corners. (One picture of Core Image is known, of intensity 2 and radius
/// 10 at 638 x 475, and this follows it. How the radius counts otherwise is our own: a larger one brings the
/// dark closer to the middle, and never all the way.)
static Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    float power = static_cast<float>(2.4 * in.number("inputIntensity", -10, 10));
    double radius = in.number("inputRadius", 0, 100);
    // Without a middle there is nothing to fall off from.
    if (!image || image->extent().isEmpty() || image->extent().isInfinite() || power == 0 || radius == 0)
        return image;
    const Rect& e = image->extent();
    ScaledFrom middle{{(e.x0 + e.x1) / 2, (e.y0 + e.y1) / 2},
                      std::sqrt(radius / (radius + 6.2)) * 2 / std::hypot(e.width(), e.height())};
    return eachPixel(image, "vignette", middle, [=](Pixel p, Position from) SIMD_INLINE {
        return p * simd::pow(1 - from.x * from.x - from.y * from.y, power);
    });
}

static const Registrar filter{
    {"CIVignette",
     "Vignette",
     "Darkens a picture towards its corners.",
     fitted("one picture of intensity 2 and radius 10; how the radius counts otherwise is our own"),
     "10.9",
     categories("ColorEffect Video Interlaced StillImage BuiltIn"),
     {imageInput(),
      numberInput("inputIntensity", "Intensity", "Scalar",
                  {.value = 0, .identity = 0, .min = -1, .max = 1, .sliderMin = -1, .sliderMax = 1}),
      numberInput("inputRadius", "Radius", "Scalar",
                  {.value = 1, .min = 0, .max = 2, .sliderMin = 0, .sliderMax = 2})},
     build}};

} // namespace engine
