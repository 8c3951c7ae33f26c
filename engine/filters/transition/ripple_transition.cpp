// CIRippleTransition: a circular wave that leaves another picture behind.
#include "striation.h"
#include "transition.h"
#include "warps.h"

#include <cmath>

namespace engine::transitions {

namespace {

/// The wave: its height's slope across three widths, and where behind it the target shows.
struct Wave {
    float begin, perWidth;

    Wave(const Inputs& in, Point centre) {
        double width = 0.75 * in.number("inputWidth", 1, 1e6);
        begin = static_cast<float>(time(in) * (farthestCorner(in.rect("inputExtent"), centre) + 3 * width) -
                                   3 * width);
        perWidth = static_cast<float>(1 / width);
    }
    SIMD_INLINE float slope(float distance) const {
        float t = (distance - begin) * perWidth;
        return smoothstep(t) - 2 * smoothstep(t - 1) + smoothstep(t - 2);
    }
    /// 0 behind the wave's middle, 1 before it.
    SIMD_INLINE float before(float distance) const { return smoothstep((distance - begin) * perWidth - 1); }
};

/// The picture of a lit surface, of which each pixel shows the place with its own slope.
Image shaded(const Image& shading, const Rect& extent, const Wave& wave, Point centre) {
    if (!shading || shading->extent().isInfinite()) return shading;
    Rect r = shading->extent();
    Reach reach{[=](const Rect&) { return extent; }, [=](const Rect&) { return r; }};
    float x = static_cast<float>((r.x0 + r.x1) / 2 - centre.x),
          y = static_cast<float>((r.y0 + r.y1) / 2 - centre.y);
    float halfWidth = static_cast<float>(r.width() / 2), halfHeight = static_cast<float>(r.height() / 2);
    return warp(clampToEdge(shading), "shading", reach, From{centre}, [=](Position p) SIMD_INLINE {
        auto [distance, direction] = polar(p);
        float slope = wave.slope(distance);
        return Position{x + halfWidth * slope * direction.x - p.x,
                        y + halfHeight * slope * direction.y - p.y};
    });
}

/// Fitted to Core Image's picture (mean residual 0.15 of 255).
Image build(const Inputs& in) {
    Image image = in.image("inputImage"), target = in.image("inputTargetImage");
    if (!image) return nullptr;
    Rect extent = target ? image->extent().unite(target->extent()) : image->extent();
    Point centre = in.point("inputCenter");
    Wave wave(in, centre);
    double scale = in.number("inputScale", -1e5, 1e5);
    auto moved = [&](const Image& picture) {
        return warp(picture, "ripple", upTo(std::abs(scale)), From{centre},
                    [=, scale = static_cast<float>(scale)](Position p) SIMD_INLINE {
                        auto [distance, direction] = polar(p);
                        float away = scale * wave.slope(distance);
                        return Position{away * direction.x, away * direction.y};
                    });
    };
    From place{centre};
    Image base = sum(weighted(moved(image), "ripple", place,
                              [=](Position p) SIMD_INLINE { return wave.before(polar(p).distance); }),
                     weighted(moved(target), "ripple", place,
                              [=](Position p) SIMD_INLINE { return 1 - wave.before(polar(p).distance); }));
    return crop(composite(shaded(in.image("inputShadingImage"), extent, wave, centre), base), extent);
}

const Registrar filter{
    {"CIRippleTransition",
     "Ripple",
     "Runs a circular wave over a picture, which leaves another one behind.",
     fitted("a wave three widths long", 0.15),
     "10.4",
     categories("Transition Video StillImage BuiltIn"),
     {imageInput(), targetInput(), imageInput("inputShadingImage", "Shading Image"),
      vectorInput("inputCenter", "Center", "Position", {150, 150}),
      vectorInput("inputExtent", "Extent", "Rectangle", {0, 0, 300, 300}), timeInput(),
      numberInput("inputWidth", "Width", "Distance",
                  {.value = 100, .min = 1, .sliderMin = 10, .sliderMax = 300}),
      numberInput("inputScale", "Scale", "Scalar",
                  {.value = 50, .identity = 0, .min = -50, .sliderMin = -50, .sliderMax = 50})},
     build}};

} // namespace

} // namespace engine::transitions
