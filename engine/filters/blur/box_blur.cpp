// CIBoxBlur.
#include "filter.h"

namespace engine {

namespace {

/// The square's side is the largest odd number of pixels up to the radius.
Image build(const Inputs& in) {
    int side = static_cast<int>(in.number("inputRadius", 0, 2001));
    return boxBlur(in.image("inputImage"), (side - 1) / 2);
}

const Registrar filter{
    {"CIBoxBlur",
     "Box Blur",
     "Blurs a picture by the plain mean of a square around each pixel.",
     fitted("the mean of a square with the largest odd side up to the radius", 0.23),
     "10.5",
     categories("Blur Video StillImage BuiltIn"),
     {imageInput(), numberInput("inputRadius", "Radius", "Distance",
                                {.value = 10, .min = 1, .sliderMin = 1, .sliderMax = 100})},
     build}};

} // namespace

} // namespace engine
