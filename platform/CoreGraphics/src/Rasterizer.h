// Pixel coverage of outlines.
#pragma once

#include <cg/geometry.h>

#include <vector>

namespace cg {

/// The corners of a closed outline.
using Polygon = std::vector<Point>;

/// How much of each pixel a set of outlines covers: the exact area for outlines that do not overlap.
class Rasterizer {
  public:
    enum class Rule { nonZero, evenOdd };

    /// Nothing outside of `clip` is computed.
    explicit Rasterizer(const IntRect& clip) : clip_(clip) {}

    /// An outline with a NaN or infinite coordinate is ignored.
    void add(const Polygon& outline);
    /// The pixels that can be covered.
    IntRect bounds() const;
    /// Coverage 0..1 of the rows y0 to y1-1 of bounds(), bounds().width() values each.
    const std::vector<float>& band(int y0, int y1, Rule rule, bool antialias);

  private:
    struct Edge {
        Point from, to;
    };
    void addEdge(Point from, Point to);
    void addClipped(Point from, Point to, double direction);

    IntRect clip_;
    std::vector<Edge> edges_;
    double minX_ = 1e300, minY_ = 1e300, maxX_ = -1e300, maxY_ = -1e300;
    // While a band is made:
    IntRect band_;
    std::vector<float> sums_;
    std::vector<float> coverage_;
};

} // namespace cg
