// CIGaussianBlur.
#include "filter.h"

namespace engine {

namespace {

/// The radius is the standard deviation in pixels. (Fitted to Core Image's picture, mean residual 0.12 of
/// 255. Its extent is larger, but there is nothing in it beyond 2.8 deviations.)
Image build(const Inputs& in) { return gaussian(in.image("inputImage"), in.number("inputRadius", 0, 1e6)); }

const Registrar filter{
    {"CIGaussianBlur",
     "Gaussian Blur",
     "Blurs a picture with a bell-shaped spread.",
     fitted("the radius is the standard deviation", 0.12),
     "10.4",
     categories("Blur StillImage Video BuiltIn"),
     {imageInput(), numberInput("inputRadius", "Radius", "Scalar",
                                {.value = 10, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 100})},
     build}};

} // namespace

} // namespace engine
