// What transitions share: two pictures and a time, and the area that they happen in.
#pragma once

#include "filter.h"

#include <cmath>

namespace engine::transitions {

inline InputInfo targetInput() { return imageInput("inputTargetImage", "Target Image"); }
inline InputInfo timeInput() {
    return numberInput("inputTime", "Time", "Time",
                       {.value = 0, .identity = 0, .min = 0, .max = 1, .sliderMin = 0, .sliderMax = 1});
}
inline double time(const Inputs& in) { return in.number("inputTime", 0, 1); }

/// A stretch of numbers.
struct Stretch {
    double begin, end;
    double length() const { return end - begin; }
};
/// What a rectangle covers along a direction, seen from the origin.
inline Stretch along(const Rect& r, Point direction) {
    Rect way = Affine{direction.x, 0, direction.y, 1, 0, 0}.apply(r);
    return {way.x0, way.x1};
}

/// Limited to what a place in single precision can tell apart.
inline double farthestCorner(const Rect& r, Point from) {
    double x = std::max(std::abs(r.x0 - from.x), std::abs(r.x1 - from.x)),
           y = std::max(std::abs(r.y0 - from.y), std::abs(r.y1 - from.y));
    return std::min(std::hypot(x, y), 1e7);
}

} // namespace engine::transitions
