// Colours: 32 bits, alpha on top (here 255 is opaque; the language counts transparency, so 0 is opaque).
#include "table.h"

#include <algorithm>
#include <cmath>

namespace studio {

namespace {

std::uint32_t pack(std::int32_t r, std::int32_t g, std::int32_t b, std::int32_t transparency) {
    auto byte = [](std::int32_t v) { return std::uint32_t(std::clamp(v, 0, 255)); };
    return (255 - byte(transparency)) << 24 | byte(r) << 16 | byte(g) << 8 | byte(b);
}

// h, s and v from 0 to 1.
std::uint32_t fromHSV(double h, double s, double v) {
    h = (h - std::floor(h)) * 6;
    auto channel = [&](double n) {
        double k = std::fmod(n + h, 6);
        double value = v - v * s * std::max(0.0, std::min({k, 4 - k, 1.0}));
        return std::int32_t(std::lround(value * 255));
    };
    return pack(channel(5), channel(3), channel(1), 0);
}

struct HSV {
    double h, s, v;
};
HSV toHSV(std::uint32_t c) {
    double r = (c >> 16 & 255) / 255.0, g = (c >> 8 & 255) / 255.0, b = (c & 255) / 255.0;
    double high = std::max({r, g, b}), range = high - std::min({r, g, b});
    double h = 0;
    if (range > 0)
        h = high == r   ? std::fmod((g - b) / range + 6, 6)
            : high == g ? (b - r) / range + 2
                        : (r - g) / range + 4;
    return {h / 6, high > 0 ? range / high : 0, high};
}

/// Making colours and reading their parts. A colour has 8 bits each of red, green, blue and transparency,
/// where 0 is opaque.
///     Dim gold As Color = RGB(255, 204, 51)
FrameworkFunctions colorFunctions() {
    return {
        /// A colour from its parts, each from 0 to 255; values outside of that are brought into range.
        ///     Dim glass As Color = RGB(0, 128, 255, 127)
        method("RGB(red As Integer, green As Integer, blue As Integer, transparency As Integer = 0) As Color",
               pack),
        /// A colour from hue, saturation and value, each from 0 to 1; a hue of 1 is red again.
        ///     Dim green As Color = HSV(1 / 3, 1, 1)
        method("HSV(hue As Double, saturation As Double, value As Double) As Color", fromHSV),
        /// A colour from cyan, magenta and yellow, each from 0 to 1.
        ///     Dim orange As Color = CMY(0, 0.5, 1)
        method("CMY(cyan As Double, magenta As Double, yellow As Double) As Color",
               [](double cyan, double magenta, double yellow) {
                   auto channel = [](double ink) { return std::int32_t(std::lround((1 - ink) * 255)); };
                   return pack(channel(cyan), channel(magenta), channel(yellow), 0);
               }),
        /// The colour's cyan, from 0 to 1.
        ///     Print Str(gold.Cyan)
        method("Cyan(Extends c As Color) As Double",
               [](std::uint32_t c) { return 1 - (c >> 16 & 255) / 255.0; }),
        /// The colour's magenta, from 0 to 1.
        ///     Print Str(gold.Magenta)
        method("Magenta(Extends c As Color) As Double",
               [](std::uint32_t c) { return 1 - (c >> 8 & 255) / 255.0; }),
        /// The colour's yellow, from 0 to 1.
        ///     Print Str(gold.Yellow)
        method("Yellow(Extends c As Color) As Double", [](std::uint32_t c) { return 1 - (c & 255) / 255.0; }),
        /// The colour's red, from 0 to 255.
        ///     Print Str(gold.Red)
        method("Red(Extends c As Color) As Integer",
               [](std::uint32_t c) { return std::int32_t(c >> 16 & 255); }),
        /// The colour's green, from 0 to 255.
        ///     Print Str(gold.Green)
        method("Green(Extends c As Color) As Integer",
               [](std::uint32_t c) { return std::int32_t(c >> 8 & 255); }),
        /// The colour's blue, from 0 to 255.
        ///     Print Str(gold.Blue)
        method("Blue(Extends c As Color) As Integer", [](std::uint32_t c) { return std::int32_t(c & 255); }),
        /// The colour's transparency: 0 is opaque, 255 clear.
        ///     Print Str(gold.Alpha)
        method("Alpha(Extends c As Color) As Integer",
               [](std::uint32_t c) { return std::int32_t(255 - (c >> 24)); }),
        /// The colour's hue, from 0 to 1; greys have 0.
        ///     Print Str(gold.Hue)
        method("Hue(Extends c As Color) As Double", [](std::uint32_t c) { return toHSV(c).h; }),
        /// The colour's saturation, from 0 to 1.
        ///     Print Str(gold.Saturation)
        method("Saturation(Extends c As Color) As Double", [](std::uint32_t c) { return toHSV(c).s; }),
        /// The value of the strongest of red, green and blue, from 0 to 1.
        ///     Print Str(gold.Value)
        method("Value(Extends c As Color) As Double", [](std::uint32_t c) { return toHSV(c).v; }),
    };
}

const Registrar registrar([] { return FrameworkPart{{}, colorFunctions()}; });

} // namespace

} // namespace studio
