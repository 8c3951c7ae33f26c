#include "registry.h"

namespace engine {

/// The radius is the standard deviation in pixels, as measured on Core Image.
static Image buildGaussian(const Inputs& in) {
    return gaussian(in.image("inputImage"), in.number("inputRadius", 0, 1e6));
}

/// The square reaches `radius` pixels to each side of the pixel.
static Image buildBox(const Inputs& in) {
    return boxBlur(in.image("inputImage"), in.number("inputRadius", 0, 1e6));
}

static const Registrar gaussianBlur{
    {"CIGaussianBlur",
     "Gaussian Blur",
     "Blurs a picture with a bell-shaped spread.",
     "10.4",
     categories("Blur StillImage Video BuiltIn"),
     {imageInput(), numberInput("inputRadius", "Radius", "Scalar",
                                {.value = 10, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 100})},
     buildGaussian}};

static const Registrar box{
    {"CIBoxBlur",
     "Box Blur",
     "Blurs a picture by the plain mean of a square around each pixel.",
     "10.5",
     categories("Blur Video StillImage BuiltIn"),
     {imageInput(), numberInput("inputRadius", "Radius", "Distance",
                                {.value = 10, .min = 1, .sliderMin = 1, .sliderMax = 100})},
     buildBox}};

} // namespace engine
