// CIRoundedRectangleGenerator: a rectangle of one colour with round corners.
#include "filter.h"
#include "kernel.h"

namespace engine {

namespace {

/// Corners are quarters of circles; an edge covers a pixel as far as the distance of its centre tells. (The
/// shape is the public definition, its smoothing our own: no picture is known.)
Image build(const Inputs& in) {
    Rect area = in.rect("inputExtent");
    if (area.isEmpty() || area.isInfinite())
        return area.isEmpty() ? empty() : constant(in.color("inputColor"));
    double halfX = area.width() / 2, halfY = area.height() / 2;
    double radius = std::min({in.number("inputRadius", 0, 1e9), halfX, halfY});
    Color color = in.color("inputColor");
    Point middle{area.x0 + halfX, area.y0 + halfY};
    return eachPlace("rounded rectangle", area, From{middle}, [=](const RenderContext& context) {
        return [c = pixel(context.color(color)), r = static_cast<float>(radius),
                x = static_cast<float>(halfX - radius), y = static_cast<float>(halfY - radius)](Position p)
                   SIMD_INLINE -> Pixel {
                       // How far the place is beyond the rectangle of the corners' centres.
                       float dx = simd::abs(p.x) - x, dy = simd::abs(p.y) - y;
                       float ax = simd::max(dx, 0), ay = simd::max(dy, 0);
                       float outside = simd::sqrt(ax * ax + ay * ay) + simd::min(simd::max(dx, dy), 0) - r;
                       float cover = simd::unit(0.5f - outside);
                       return {c.r * cover, c.g * cover, c.b * cover, c.a * cover};
                   };
    });
}

const Registrar filter{{"CIRoundedRectangleGenerator",
                        "Rounded Rectangle Generator",
                        "Makes a rectangle with round corners.",
                        publicDefinition("quarters of circles at the corners; the smoothing is our own"),
                        "10.15",
                        categories("Generator StillImage BuiltIn"),
                        {vectorInput("inputExtent", "Extent", "Rectangle", {0, 0, 100, 100}),
                         numberInput("inputRadius", "Radius", "Distance",
                                     {.value = 10, .min = 0, .sliderMin = 0, .sliderMax = 100}),
                         colorInput("inputColor", "Color", "Color", {1, 1, 1, 1})},
                        build}};

} // namespace

} // namespace engine
