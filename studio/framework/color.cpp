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

FrameworkFunctions colorFunctions() {
    return {
        method("RGB(red As Integer, green As Integer, blue As Integer, transparency As Integer = 0) As Color",
               pack),
        method("HSV(hue As Double, saturation As Double, value As Double) As Color", fromHSV),
        method("CMY(cyan As Double, magenta As Double, yellow As Double) As Color",
               [](double cyan, double magenta, double yellow) {
                   auto channel = [](double ink) { return std::int32_t(std::lround((1 - ink) * 255)); };
                   return pack(channel(cyan), channel(magenta), channel(yellow), 0);
               }),
        method("Cyan(Extends c As Color) As Double",
               [](std::uint32_t c) { return 1 - (c >> 16 & 255) / 255.0; }),
        method("Magenta(Extends c As Color) As Double",
               [](std::uint32_t c) { return 1 - (c >> 8 & 255) / 255.0; }),
        method("Yellow(Extends c As Color) As Double", [](std::uint32_t c) { return 1 - (c & 255) / 255.0; }),
        method("Red(Extends c As Color) As Integer",
               [](std::uint32_t c) { return std::int32_t(c >> 16 & 255); }),
        method("Green(Extends c As Color) As Integer",
               [](std::uint32_t c) { return std::int32_t(c >> 8 & 255); }),
        method("Blue(Extends c As Color) As Integer", [](std::uint32_t c) { return std::int32_t(c & 255); }),
        method("Alpha(Extends c As Color) As Integer",
               [](std::uint32_t c) { return std::int32_t(255 - (c >> 24)); }),
        method("Hue(Extends c As Color) As Double", [](std::uint32_t c) { return toHSV(c).h; }),
        method("Saturation(Extends c As Color) As Double", [](std::uint32_t c) { return toHSV(c).s; }),
        method("Value(Extends c As Color) As Double", [](std::uint32_t c) { return toHSV(c).v; }),
    };
}

const Registrar registrar([] { return FrameworkPart{{}, colorFunctions()}; });

} // namespace

} // namespace studio
