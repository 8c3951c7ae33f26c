#pragma once

#include "Rasterizer.h"

namespace cg {

/// A run of connected lines.
struct Subpath {
    std::vector<Point> points;
    bool closed = false;
};

/// The outlines of lines of a width (in user space), butt ends and mitred joins, all turning the same way so
/// that their union is what the non-zero rule fills. The points are in device space.
std::vector<Polygon> strokeOutlines(const std::vector<Subpath>& path, double width,
                                    const Matrix& userToDevice);

} // namespace cg
