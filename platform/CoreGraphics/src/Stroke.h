// Outlines of stroked lines.
#pragma once

#include "Rasterizer.h"

namespace cg {

/// A run of connected lines.
struct Subpath {
    std::vector<Point> points;
    bool closed = false;
};

/// Outlines of the path stroked with a width in user space, with butt ends and mitred joins. All turn the
/// same way, so that the non-zero rule fills their union. The points are in device space.
std::vector<Polygon> strokeOutlines(const std::vector<Subpath>& path, double width,
                                    const Matrix& userToDevice);

} // namespace cg
