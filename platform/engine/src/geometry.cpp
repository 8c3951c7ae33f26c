#include "tile.h"

#include <cmath>

namespace engine {

namespace {

/// A host's "infinite" rectangle reaches half of the greatest float or double; no real picture comes near.
constexpr double farAway = 1e30;

double snapFar(double edge) { return edge >= farAway ? Rect::inf : edge <= -farAway ? -Rect::inf : edge; }

int limited(double v) {
    constexpr double limit = IntRect::limit;
    return static_cast<int>(v > -limit ? std::min(v, limit) : -limit);
}

} // namespace

Rect Rect::ofSize(double x, double y, double width, double height) {
    if (width < 0) x += width, width = -width;
    if (height < 0) y += height, height = -height;
    return {snapFar(x), snapFar(y), snapFar(x + width), snapFar(y + height)};
}

bool Rect::isInfinite() const {
    return std::isinf(x0) || std::isinf(y0) || std::isinf(x1) || std::isinf(y1);
}

bool Rect::contains(const Rect& o) const {
    return o.isEmpty() || (x0 <= o.x0 && y0 <= o.y0 && o.x1 <= x1 && o.y1 <= y1);
}

Rect Rect::intersect(const Rect& o) const {
    Rect r = {std::max(x0, o.x0), std::max(y0, o.y0), std::min(x1, o.x1), std::min(y1, o.y1)};
    return r.isEmpty() ? Rect{} : r;
}

Rect Rect::unite(const Rect& o) const {
    if (isEmpty()) return o;
    if (o.isEmpty()) return *this;
    return {std::min(x0, o.x0), std::min(y0, o.y0), std::max(x1, o.x1), std::max(y1, o.y1)};
}

Rect Rect::grown(double dx, double dy) const {
    return isEmpty() ? Rect{} : Rect{x0 - dx, y0 - dy, x1 + dx, y1 + dy};
}

Rect Rect::integral() const {
    // A hair of tolerance: 0.1 * 30 shall not touch a fourth pixel.
    constexpr double hair = 1e-6;
    return isEmpty() ? Rect{}
                     : Rect{std::floor(x0 + hair), std::floor(y0 + hair), std::ceil(x1 - hair), std::ceil(y1 - hair)};
}

Affine Affine::rotation(double radians) {
    double c = std::cos(radians), s = std::sin(radians);
    return {c, s, -s, c, 0, 0};
}

Affine Affine::then(const Affine& n) const {
    return {n.a * a + n.c * b,  n.b * a + n.d * b,  n.a * c + n.c * d,
            n.b * c + n.d * d,  n.a * tx + n.c * ty + n.tx, n.b * tx + n.d * ty + n.ty};
}

std::optional<Affine> Affine::inverse() const {
    double det = a * d - b * c;
    if (!(std::abs(det) > 1e-18) || !std::isfinite(det)) return {};
    return Affine{d / det, -b / det, -c / det, a / det, (c * ty - d * tx) / det, (b * tx - a * ty) / det};
}

Rect Affine::apply(const Rect& r) const {
    if (r.isEmpty()) return {};
    // A zero factor has to win over an infinite edge.
    auto times = [](double f, double edge) { return f == 0 ? 0 : f * edge; };
    auto span = [&](double f, double g, double t, double& low, double& high) {
        auto [ax, bx] = std::minmax(times(f, r.x0), times(f, r.x1));
        auto [ay, by] = std::minmax(times(g, r.y0), times(g, r.y1));
        low = ax + ay + t;
        high = bx + by + t;
    };
    Rect out;
    span(a, c, tx, out.x0, out.x1);
    span(b, d, ty, out.y0, out.y1);
    return out;
}

bool Affine::isFinite() const {
    for (double v : {a, b, c, d, tx, ty})
        if (!std::isfinite(v)) return false;
    return true;
}

IntRect IntRect::around(const Rect& r) {
    if (r.isEmpty()) return {};
    Rect i = r.integral();
    return {limited(i.x0), limited(i.y0), limited(i.x1), limited(i.y1)};
}

IntRect IntRect::centredIn(const Rect& r) {
    if (r.isEmpty()) return {};
    return {limited(std::ceil(r.x0 - 0.5)), limited(std::ceil(r.y0 - 0.5)), limited(std::ceil(r.x1 - 0.5)),
            limited(std::ceil(r.y1 - 0.5))};
}

Rect IntRect::rect() const {
    // The limits stand for infinity, there and back.
    auto edge = [](int v) { return v >= limit ? Rect::inf : v <= -limit ? -Rect::inf : double(v); };
    return isEmpty() ? Rect{} : Rect{edge(x0), edge(y0), edge(x1), edge(y1)};
}

IntRect IntRect::unite(const IntRect& o) const {
    if (isEmpty()) return o;
    if (o.isEmpty()) return *this;
    return {std::min(x0, o.x0), std::min(y0, o.y0), std::max(x1, o.x1), std::max(y1, o.y1)};
}

} // namespace engine
