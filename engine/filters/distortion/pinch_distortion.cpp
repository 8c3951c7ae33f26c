// CIPinchDistortion: a picture drawn together towards a point.
#include "filter.h"
#include "radial.h"
#include "warps.h"

#include <cmath>

namespace engine::distortion {

namespace {

/// A pixel at the distance d from the centre shows what lies at d (1 - scale + scale sqrt(radius / d)), also
/// beyond the radius. (Fitted to Core Image's picture within 1%; the extent fits its size.)
struct Pinch {
    double radius, scale;

    double from(double d) const { return d * (1 - scale) + scale * std::sqrt(radius * d); }
    /// The largest distance that shows what lies at `d` > 0, divided by d.
    double factor(double d) const {
        double bent = scale * std::sqrt(radius), straight = 1 - scale;
        if (std::isinf(d)) return straight > 0 ? 1 / straight : Rect::inf;
        // With v the square root of the distance: straight v^2 + bent v = d, or -d beyond the centre's second
        // place, where the picture appears again upside down.
        double v = straight < 0 ? (bent + std::sqrt(bent * bent - 4 * straight * d)) / (-2 * straight)
                                : 2 * d / (bent + std::sqrt(bent * bent + 4 * straight * d));
        return v * v / d;
    }
    Rect extent(const Rect& source, Point centre) const {
        if (scale <= 1)
            return movedAlongRays(source, centre, [this](double d) { return factor(d); }).grown(0.5, 0.5);
        double far = farthest(source, centre);
        return around(centre, far * factor(far)).grown(0.5, 0.5);
    }
    Rect region(const Rect& area, Point centre) const {
        double far = farthest(area, centre);
        if (scale <= 1) return around(centre, from(far));
        // Where `from` is greatest.
        double peak = radius * std::pow(scale / (2 * scale - 2), 2);
        return around(centre, std::max(from(std::min(far, peak)), std::abs(from(far))));
    }
    static Rect around(Point centre, double radius) {
        return std::isfinite(radius) ? squareAround(centre, radius) : Rect::infinite();
    }
    static double farthest(const Rect& r, Point centre) {
        return std::hypot(std::max(std::abs(r.x0 - centre.x), std::abs(r.x1 - centre.x)),
                          std::max(std::abs(r.y0 - centre.y), std::abs(r.y1 - centre.y)));
    }
};

Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    Point centre = in.point("inputCenter");
    Pinch pinch{in.number("inputRadius", 0, 1e6), in.number("inputScale", 0, 10)};
    if (pinch.radius < 0.5 || pinch.scale == 0) return image;
    Reach reach{[=](const Rect& source) { return pinch.extent(source, centre); },
                [=](const Rect& area) { return pinch.region(area, centre); }};
    return warp(image, "pinch", reach, From{centre},
                [radius = static_cast<float>(pinch.radius),
                 scale = static_cast<float>(pinch.scale)](Position p) SIMD_INLINE {
                    float distance = simd::max(simd::sqrt(p.x * p.x + p.y * p.y), 1e-3f);
                    float farther = scale * (simd::sqrt(radius / distance) - 1);
                    return Position{farther * p.x, farther * p.y};
                });
}

const Registrar filter{
    {"CIPinchDistortion",
     "Pinch Distortion",
     "Draws a picture together towards a point.",
     fitted("the root of the distance, also beyond the radius", 0.2),
     "10.4",
     categories("DistortionEffect Video StillImage BuiltIn"),
     {imageInput(), vectorInput("inputCenter", "Center", "Position", {150, 150}),
      numberInput("inputRadius", "Radius", "Distance",
                  {.value = 300, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 1000}),
      numberInput("inputScale", "Scale", "Scalar",
                  {.value = 0.5, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 2})},
     build}};

} // namespace

} // namespace engine::distortion
