// CILinearGradient: a transition between two colours along a line.
#include "two_colors.h"

#include <cmath>

namespace engine::generators {

namespace {

/// The colour changes evenly along the line between the points and stays the same beyond them.
Image build(const Inputs& in) {
    Point from = in.point("inputPoint0"), to = in.point("inputPoint1");
    Point way{to.x - from.x, to.y - from.y};
    double square = way.x * way.x + way.y * way.y;
    if (!(square > 1e-12) || !std::isfinite(square)) return constant(in.color("inputColor0"));
    return twoColors("linear gradient", in, Along{from, way, square},
                     [](float t) SIMD_INLINE { return simd::unit(t); });
}

const Registrar filter{{"CILinearGradient",
                        "Linear Gradient",
                        "Makes a transition between two colours along a line.",
                        publicDefinition("an even change along a line"),
                        "10.4",
                        categories("Gradient Video StillImage BuiltIn"),
                        {vectorInput("inputPoint0", "Point 0", "Position", {0, 0}),
                         vectorInput("inputPoint1", "Point 1", "Position", {200, 200}),
                         colorInput("inputColor0", "Color 1", "Color", white),
                         colorInput("inputColor1", "Color 2", "Color", black)},
                        build}};

} // namespace

} // namespace engine::generators
