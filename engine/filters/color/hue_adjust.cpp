// CIHueAdjust: hues turned around the circle.
#include "filter.h"
#include "kernel.h"

#include <cmath>

namespace engine {

/// The rotation of hues that keeps luminance, hueRotate of SVG's feColorMatrix, in linear light: a positive
/// angle turns red towards yellow.
static Image build(const Inputs& in) {
    double angle = in.number("inputAngle", -1e6, 1e6), c = std::cos(angle), s = std::sin(angle);
    // Gray, the part of a colour that turns with the cosine, and the part across it that turns with the sine.
    constexpr std::array<double, 9> gray{0.213, 0.715, 0.072, 0.213, 0.715, 0.072, 0.213, 0.715, 0.072};
    constexpr std::array<double, 9> across{-0.213, -0.715, 0.928, 0.143, 0.140, -0.283, -0.787, 0.715, 0.072};
    std::array<double, 9> m;
    for (int i = 0; i < 9; ++i) m[i] = gray[i] + c * ((i % 4 == 0 ? 1 : 0) - gray[i]) + s * across[i];
    return colorMatrix(in.image("inputImage"), colorsOnly(m));
}

static const Registrar filter{
    {"CIHueAdjust",
     "Hue Adjust",
     "Turns all hues around the colour circle by an angle.",
     fitted("hueRotate of SVG's feColorMatrix, in linear light"),
     "10.4",
     categories("ColorAdjustment Video StillImage Interlaced NonSquarePixels BuiltIn"),
     {imageInput(), numberInput("inputAngle", "Angle", "Angle",
                                {.value = 0, .identity = 0, .sliderMin = -pi, .sliderMax = pi})},
     build}};

} // namespace engine
