// The extent of a picture whose pixels move along the rays of a point.
#pragma once

#include "filter.h"

#include <cmath>

namespace engine::distortion {

/// The box around a rectangle whose points move from the distance d to the distance d * factor(d) from the
/// centre. The factor must be monotonic and keep the order of distances, so that each side is farthest either
/// at its ends or where it is nearest to the centre. Distances are above 0 and may be infinite.
template <class Factor>
Rect movedAlongRays(const Rect& r, Point centre, Factor factor) {
    if (r.isEmpty()) return r;
    // Of the side at `edge`, which runs from `low` to `high` (all from the centre): the farthest it goes in
    // the direction of `sign`.
    auto side = [&](double edge, double low, double high, double sign) {
        if (!std::isfinite(edge)) return edge;
        double near = std::clamp(0.0, low, high), far = std::max(std::abs(low), std::abs(high));
        // A side through the centre moves along itself.
        auto moved = [&](double across) { return edge == 0 ? 0 : edge * factor(std::hypot(edge, across)); };
        return sign * std::max(sign * moved(near), sign * moved(far));
    };
    double x0 = r.x0 - centre.x, x1 = r.x1 - centre.x, y0 = r.y0 - centre.y, y1 = r.y1 - centre.y;
    return {centre.x + side(x0, y0, y1, -1), centre.y + side(y0, x0, x1, -1), centre.x + side(x1, y0, y1, 1),
            centre.y + side(y1, x0, x1, 1)};
}

} // namespace engine::distortion
