// CIVignette: darker towards the corners.
#include "filter.h"
#include "kernel.h"

namespace engine {

/// Light falls off with the fourth power of the cosine of the angle it comes in at, as in a lens; the radius
/// sets how wide that angle is in the corners (at 1, where the distance from the middle equals the distance
/// of the film) and the intensity mixes. (The law of lenses; that Core Image follows it is our assumption.)
static Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    float intensity = static_cast<float>(in.number("inputIntensity", -10, 10));
    double radius = in.number("inputRadius", 0, 1000);
    // Without a middle there is nothing to fall off from.
    if (!image || image->extent().isEmpty() || image->extent().isInfinite() || intensity == 0 || radius == 0)
        return image;
    const Rect& e = image->extent();
    ScaledFrom middle{{(e.x0 + e.x1) / 2, (e.y0 + e.y1) / 2}, radius * 2 / std::hypot(e.width(), e.height())};
    return eachPixel(image, "vignette", middle, [=](Pixel p, Position from) SIMD_INLINE {
        float cosine = 1 / (1 + from.x * from.x + from.y * from.y);
        return p * simd::max(1 + intensity * (cosine * cosine - 1), 0);
    });
}

static const Registrar filter{
    {"CIVignette",
     "Vignette",
     "Darkens a picture towards its corners.",
     "10.9",
     categories("ColorEffect Video Interlaced StillImage BuiltIn"),
     {imageInput(),
      numberInput("inputIntensity", "Intensity", "Scalar",
                  {.value = 0, .identity = 0, .min = -1, .max = 1, .sliderMin = -1, .sliderMax = 1}),
      numberInput("inputRadius", "Radius", "Scalar",
                  {.value = 1, .min = 0, .max = 2, .sliderMin = 0, .sliderMax = 2})},
     build}};

} // namespace engine
