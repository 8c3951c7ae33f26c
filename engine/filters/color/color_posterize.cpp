// CIColorPosterize: few steps of each colour.
#include "filter.h"
#include "kernel.h"

namespace engine {

/// So many even steps in each component of linear light, black and white among them: round(c (n - 1)) /
/// (n - 1). (Fitted to Core Image's picture, with which it agrees in every pixel.)
static Image build(const Inputs& in) {
    float last = static_cast<float>(std::max(in.number("inputLevels", 1, 1e4) - 1, 1e-3));
    return eachStraightColor(in.image("inputImage"), "posterize",
                             [=](float v) SIMD_INLINE { return simd::floor(v * last + 0.5f) / last; });
}

static const Registrar filter{
    {"CIColorPosterize",
     "Color Posterize",
     "Leaves a picture only so many steps of each colour component.",
     fitted("even steps of linear light; every pixel agrees", 0),
     "10.4",
     categories("ColorEffect Video Interlaced NonSquarePixels StillImage BuiltIn"),
     {imageInput(), numberInput("inputLevels", "Levels", "Scalar",
                                {.value = 6, .identity = 300, .min = 1, .sliderMin = 2, .sliderMax = 30})},
     build}};

} // namespace engine
