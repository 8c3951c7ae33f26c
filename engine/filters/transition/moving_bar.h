// A coloured bar that moves over a picture and leaves another one behind, as in CISwipeTransition and
// CICopyMachineTransition.
#pragma once

#include "kernel.h"
#include "transition.h"

#include <cmath>

namespace engine::transitions {

/// A bar, `width` wide, that moves over the extent in a direction, from just before it to just behind.
struct Bar {
    double dx, dy, width, front;

    explicit Bar(const Inputs& in)
        : dx(std::cos(in.number("inputAngle", -1e6, 1e6))), dy(std::sin(in.number("inputAngle", -1e6, 1e6))),
          width(in.number("inputWidth", 0.1, 1e6)) {
        // x' is the way along the direction.
        Rect way = Affine{dx, 0, dy, 1, 0, 0}.apply(in.rect("inputExtent"));
        front = way.x0 + time(in) * (way.width() + width);
    }

    /// How far behind the front a pixel is, in widths: 0 at the front and before it, 1 behind the bar.
    struct Row {
        float first, step;
        SIMD_INLINE float at(int i) const { return simd::unit(first + static_cast<float>(i) * step); }
    };
    Row row(int x, int y) const {
        return {static_cast<float>((front - (x + 0.5) * dx - (y + 0.5) * dy) / width),
                static_cast<float>(-dx / width)};
    }
};

/// Across the bar the picture turns into the target, `sharpness` times as steeply as over the whole width,
/// and the colour over both comes and goes, at most `opacity` in the middle.
inline Image barMoved(const Inputs& in, float sharpness, double opacity) {
    Image image = in.image("inputImage");
    if (!image) return nullptr;
    Bar bar(in);
    auto turned = [=](float t) SIMD_INLINE { return simd::unit((t - 0.5f) * sharpness + 0.5f); };
    auto colored = [most = static_cast<float>(opacity)](float t)
                       SIMD_INLINE { return simd::min(most * (1 - simd::abs(2 * t - 1)), 1); };
    Image both = sum(weighted(image, "swipe", bar,
                              [=](float t) SIMD_INLINE { return (1 - turned(t)) * (1 - colored(t)); }),
                     weighted(in.image("inputTargetImage"), "swipe", bar,
                              [=](float t) SIMD_INLINE { return turned(t) * (1 - colored(t)); }));
    if (opacity == 0) return both;
    Image color = crop(constant(in.color("inputColor")), both->extent());
    return sum(weighted(color, "swipe", bar, colored), both);
}

} // namespace engine::transitions
