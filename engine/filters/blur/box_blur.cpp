// CIBoxBlur.
#include "filter.h"

namespace engine {

namespace {

/// The square reaches `radius` pixels to each side of the pixel.
Image build(const Inputs& in) { return boxBlur(in.image("inputImage"), in.number("inputRadius", 0, 1e6)); }

const Registrar filter{
    {"CIBoxBlur",
     "Box Blur",
     "Blurs a picture by the plain mean of a square around each pixel.",
     "10.5",
     categories("Blur Video StillImage BuiltIn"),
     {imageInput(), numberInput("inputRadius", "Radius", "Distance",
                                {.value = 10, .min = 1, .sliderMin = 1, .sliderMax = 100})},
     build}};

} // namespace

} // namespace engine
