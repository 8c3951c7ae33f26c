// CIRadialGradient: a transition between two colours from a centre outwards.
#include "two_colors.h"

#include <cmath>

namespace engine::generators {

namespace {

/// The colour changes evenly with the distance from the centre, between the two radii.
Image build(const Inputs& in) {
    double r0 = in.number("inputRadius0", 0, 1e9), r1 = in.number("inputRadius1", 0, 1e9);
    // With equal radii the change is a step, softened over a pixel.
    double span = std::abs(r1 - r0) < 1 ? (r1 < r0 ? -1 : 1) : r1 - r0;
    return twoColors(
        "radial gradient", in, From{in.point("inputCenter")},
        [scale = static_cast<float>(1 / span), begin = static_cast<float>(-r0 / span)](Position p)
            SIMD_INLINE { return simd::unit(begin + scale * simd::sqrt(p.x * p.x + p.y * p.y)); });
}

const Registrar filter{{"CIRadialGradient",
                        "Radial Gradient",
                        "Makes a transition between two colours from a centre outwards.",
                        publicDefinition("an even change with the distance"),
                        "10.4",
                        categories("Gradient Video StillImage BuiltIn"),
                        {vectorInput("inputCenter", "Center", "Position", {150, 150}),
                         numberInput("inputRadius0", "Radius 1", "Distance",
                                     {.value = 5, .min = 0, .sliderMin = 0, .sliderMax = 800}),
                         numberInput("inputRadius1", "Radius 2", "Distance",
                                     {.value = 100, .min = 0, .sliderMin = 0, .sliderMax = 800}),
                         colorInput("inputColor0", "Color 1", "Color", white),
                         colorInput("inputColor1", "Color 2", "Color", black)},
                        build}};

} // namespace

} // namespace engine::generators
