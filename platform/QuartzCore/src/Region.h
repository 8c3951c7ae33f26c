// A region of the plane as rectangles that do not overlap.
#pragma once

#include <engine/engine.h>

#include <vector>

namespace ci {

using engine::Rect;

class Region {
  public:
    Region() = default;
    explicit Region(const Rect& r);

    const std::vector<Rect>& rects() const { return rects_; }
    /// Bounding box.
    Rect extent() const;

    Region unite(const Region& other) const;
    Region intersect(const Region& other) const;
    Region subtract(const Region& other) const;
    /// Every boundary moved inwards, or outwards for negative amounts.
    Region inset(double dx, double dy) const;
    /// Rectangles that a transform does not keep upright become their bounding boxes or, with `interior`,
    /// bands that lie inside.
    Region transform(const engine::Affine& matrix, bool interior) const;
    /// True for the same points, however they are divided into rectangles.
    bool operator==(const Region& other) const;

  private:
    void add(const Rect& r);
    std::vector<Rect> rects_;
};

} // namespace ci
