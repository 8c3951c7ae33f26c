// Set operations on regions made of rectangles.
#include "Region.h"

#include <algorithm>
#include <cmath>

namespace ci {

namespace {

/// The parts of `r` outside of `hole`, at most four.
std::vector<Rect> outside(const Rect& r, const Rect& hole) {
    Rect h = r.intersect(hole);
    if (h.isEmpty()) return {r};
    std::vector<Rect> parts;
    for (const Rect& part : {Rect{r.x0, r.y0, r.x1, h.y0}, Rect{r.x0, h.y1, r.x1, r.y1},
                             Rect{r.x0, h.y0, h.x0, h.y1}, Rect{h.x1, h.y0, r.x1, h.y1}})
        if (!part.isEmpty()) parts.push_back(part);
    return parts;
}

/// The leftmost and rightmost points where the outline of a convex polygon crosses a horizontal line.
std::pair<double, double> crossing(const engine::Point (&corners)[4], double y) {
    double left = Rect::inf, right = -Rect::inf;
    auto meet = [&](double x) {
        left = std::min(left, x);
        right = std::max(right, x);
    };
    for (int i = 0; i < 4; ++i) {
        engine::Point p = corners[i], q = corners[(i + 1) % 4];
        if (std::min(p.y, q.y) > y || std::max(p.y, q.y) < y) continue;
        // A side along the line is met by the sides at its ends.
        if (p.y != q.y) meet(p.x + (q.x - p.x) * (y - p.y) / (q.y - p.y));
    }
    return {left, right};
}

/// Bands inside the transformed rectangle. A convex shape contains the whole of a band if it contains both of
/// its ends.
std::vector<Rect> bandsInside(const Rect& r, const engine::Affine& m) {
    constexpr int count = 64;
    auto corner = [&m](double x, double y) { return m.apply(engine::Point{x, y}); };
    const engine::Point corners[4] = {corner(r.x0, r.y0), corner(r.x1, r.y0), corner(r.x1, r.y1),
                                      corner(r.x0, r.y1)};
    Rect box = m.apply(r);
    std::vector<Rect> bands;
    for (int i = 0; i < count; ++i) {
        double y0 = box.y0 + box.height() * i / count, y1 = box.y0 + box.height() * (i + 1) / count;
        auto [left0, right0] = crossing(corners, y0);
        auto [left1, right1] = crossing(corners, y1);
        Rect band = {std::max(left0, left1), y0, std::min(right0, right1), y1};
        if (!band.isEmpty()) bands.push_back(band);
    }
    return bands;
}

} // namespace

Region::Region(const Rect& r) { add(r); }

void Region::add(const Rect& r) {
    if (!r.isEmpty()) rects_.push_back(r);
}

Rect Region::extent() const {
    Rect box;
    for (const Rect& r : rects_) box = box.isEmpty() ? r : box.unite(r);
    return box;
}

Region Region::subtract(const Region& other) const {
    std::vector<Rect> parts = rects_;
    for (const Rect& hole : other.rects_) {
        std::vector<Rect> left;
        for (const Rect& part : parts) {
            std::vector<Rect> pieces = outside(part, hole);
            left.insert(left.end(), pieces.begin(), pieces.end());
        }
        parts = std::move(left);
    }
    Region result;
    result.rects_ = std::move(parts);
    return result;
}

Region Region::unite(const Region& other) const {
    Region result = other;
    for (const Rect& part : subtract(other).rects_) result.add(part);
    return result;
}

Region Region::intersect(const Region& other) const {
    Region result;
    for (const Rect& a : rects_)
        for (const Rect& b : other.rects_) result.add(a.intersect(b));
    return result;
}

Region Region::inset(double dx, double dy) const {
    // Growing grows every rectangle; shrinking grows the complement.
    auto grow = [](const Region& region, double x, double y) {
        Region grown;
        for (const Rect& r : region.rects_) grown = grown.unite(Region(r.grown(x, y)));
        return grown;
    };
    Region result = grow(*this, std::max(-dx, 0.), std::max(-dy, 0.));
    if (dx > 0 || dy > 0) {
        Region complement = Region(Rect::infinite()).subtract(result);
        result = result.subtract(grow(complement, std::max(dx, 0.), std::max(dy, 0.)));
    }
    return result;
}

Region Region::transform(const engine::Affine& m, bool interior) const {
    bool upright = (m.b == 0 && m.c == 0) || (m.a == 0 && m.d == 0);
    Region result;
    for (const Rect& r : rects_) {
        if (upright || !interior || r.isInfinite()) {
            result = result.unite(Region(m.apply(r)));
            continue;
        }
        for (const Rect& band : bandsInside(r, m)) result = result.unite(Region(band));
    }
    return result;
}

bool Region::operator==(const Region& other) const {
    return subtract(other).rects_.empty() && other.subtract(*this).rects_.empty();
}

} // namespace ci
