// CISmoothLinearGradient: a transition between two colours along a line that begins and ends gently.
#include "filter.h"
#include "kernel.h"

#include <cmath>

namespace engine {

namespace {

/// The way along the line through the third-degree S-curve, in linear light.
Image build(const Inputs& in) {
    Point from = in.point("inputPoint0"), to = in.point("inputPoint1");
    Color first = in.color("inputColor0"), second = in.color("inputColor1");
    double dx = to.x - from.x, dy = to.y - from.y, square = dx * dx + dy * dy;
    if (!(square > 1e-12) || !std::isfinite(square)) return constant(first);
    Affine along = Affine::translation(-from.x, -from.y).then({dx / square, 0, dy / square, 0, 0, 0});
    return eachPlace("smooth linear gradient", Rect::infinite(), Through{along},
                     [=](const RenderContext& context) {
                         Pixel a = pixel(context.color(first)), b = pixel(context.color(second));
                         return [=](Position p) SIMD_INLINE { return mix(a, b, smoothstep(p.x)); };
                     });
}

const Registrar filter{{"CISmoothLinearGradient",
                        "Smooth Linear Gradient",
                        "Makes a transition between two colours along a line, with gentle ends.",
                        fitted("smoothstep along the line, in linear light", 0.2),
                        "10.10",
                        categories("Gradient Video StillImage BuiltIn"),
                        {vectorInput("inputPoint0", "Point 0", "Position", {0, 0}),
                         vectorInput("inputPoint1", "Point 1", "Position", {200, 200}),
                         colorInput("inputColor0", "Color 1", "Color", {1, 1, 1, 1}),
                         colorInput("inputColor1", "Color 2", "Color", {0, 0, 0, 1})},
                        build}};

} // namespace

} // namespace engine
