// CIGaussianGradient: a soft spot of one colour in another.
#include "two_colors.h"

#include <cmath>

namespace engine::generators {

namespace {

/// A Gaussian whose standard deviation is a third of the radius, stretched so that the second colour is
/// reached there. (Core Image does not document its formula.)
Image build(const Inputs& in) {
    double radius = std::max(in.number("inputRadius", 0, 1e9), 1e-3), end = std::exp(-4.5);
    return twoColors("gaussian gradient", in, From{in.point("inputCenter")},
                     [square = static_cast<float>(-4.5 / (radius * radius)),
                      stretch = static_cast<float>(1 / (1 - end))](Position p) SIMD_INLINE {
                         return simd::unit((1 - simd::exp(square * (p.x * p.x + p.y * p.y))) * stretch);
                     });
}

const Registrar filter{{"CIGaussianGradient",
                        "Gaussian Gradient",
                        "Makes a soft spot of one colour in another.",
                        ourOwn("a Gaussian with a third of the radius, stretched to end at the radius"),
                        "10.4",
                        categories("Gradient Video StillImage BuiltIn"),
                        {vectorInput("inputCenter", "Center", "Position", {150, 150}),
                         colorInput("inputColor0", "Color 1", "Color", white),
                         colorInput("inputColor1", "Color 2", "Color", {0, 0, 0, 0}),
                         numberInput("inputRadius", "Radius", "Distance",
                                     {.value = 300, .min = 0, .sliderMin = 0, .sliderMax = 800})},
                        build}};

} // namespace

} // namespace engine::generators
