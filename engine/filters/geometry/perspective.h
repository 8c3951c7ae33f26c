// Pictures in perspective: projective maps, and how filters bring a picture's corners to four points.
#pragma once

#include "filter.h"
#include "nodes.h"

#include <optional>

namespace engine::perspective {

/// A projective map by its matrix: (x', y', w') = rows times (x, y, 1).
struct Projection {
    std::array<double, 9> m;

    /// The unit square to a quadrilateral (P. S. Heckbert, "Fundamentals of Texture Mapping and Image
    /// Warping", 1989, section 2.2.3). Empty when the points make none.
    static std::optional<Projection> toQuad(Point p00, Point p10, Point p11, Point p01);

    Projection then(const Projection& next) const;
    /// Empty when there is none.
    std::optional<Projection> inverse() const;
    /// Where a point goes; behind the horizon, nowhere.
    std::optional<Point> operator()(Point p) const {
        double w = m[6] * p.x + m[7] * p.y + m[8];
        if (!(w > 0)) return {};
        return Point{(m[0] * p.x + m[1] * p.y + m[2]) / w, (m[3] * p.x + m[4] * p.y + m[5]) / w};
    }
};

/// From the plane of the four points back to the picture, whose corners go there; w' is positive in front of
/// the horizon. Empty when the points make no quadrilateral or the picture has no corners.
std::optional<Projection> fromPoints(const Rect& source, const std::array<Point, 4>& corners);

/// The image and the four points.
std::vector<InputInfo> perspectiveInputs();
/// The four points: bottom left, bottom right, top right, top left.
std::array<Point, 4> corners(const Inputs& in);

/// The image, of which the corners of `source` are at the four points of the inputs; empty when that cannot
/// be. What reaches the horizon makes the result infinite.
Image leaned(const Image& image, const Rect& source, const Inputs& in);

/// A place where the picture is transparent.
inline Point outside(const Rect& source) { return {source.x0 - 2, source.y0 - 2}; }
/// How far away from `to` to read so that it shows what is at `from`.
inline void displaceTo(Point from, Point to, float& dx, float& dy) {
    dx = static_cast<float>(from.x - to.x);
    dy = static_cast<float>(from.y - to.y);
}

} // namespace engine::perspective
