// CIHueAdjust: hues turned around the circle.
#include "filter.h"
#include "kernel.h"

#include <cmath>

namespace engine {

/// A turn of the two chroma axes of YIQ by the angle, its luminance kept: the textbook rotation of hues.
static Image build(const Inputs& in) {
    double angle = in.number("inputAngle", -1e6, 1e6), c = std::cos(angle), s = std::sin(angle);
    constexpr std::array<double, 9> toYiq{0.299,     0.587,    0.114,     0.595716, -0.274453,
                                          -0.321263, 0.211456, -0.522591, 0.311135};
    // Inverse of the above.
    constexpr std::array<double, 9> toRgb{1,          0.9562957, 0.6210244,  1,        -0.2721221,
                                          -0.6473806, 1,         -1.1069890, 1.7046150};
    const std::array<double, 9> turn{1, 0, 0, 0, c, -s, 0, s, c};
    auto product = [](const auto& a, const auto& b) {
        std::array<double, 9> out{};
        for (int i = 0; i < 9; ++i)
            for (int k = 0; k < 3; ++k) out[i] += a[i / 3 * 3 + k] * b[k * 3 + i % 3];
        return out;
    };
    return colorMatrix(in.image("inputImage"), colorsOnly(product(toRgb, product(turn, toYiq))));
}

static const Registrar filter{
    {"CIHueAdjust",
     "Hue Adjust",
     "Turns all hues around the colour circle by an angle.",
     "10.4",
     categories("ColorAdjustment Video StillImage Interlaced NonSquarePixels BuiltIn"),
     {imageInput(), numberInput("inputAngle", "Angle", "Angle",
                                {.value = 0, .identity = 0, .sliderMin = -pi, .sliderMax = pi})},
     build}};

} // namespace engine
