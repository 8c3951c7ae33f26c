// Rectangles and transforms.
#include "tile.h"

#include <cmath>
#include <limits>

namespace engine {

Rect Rect::ofSize(double x, double y, double width, double height) {
    if (width < 0) x += width, width = -width;
    if (height < 0) y += height, height = -height;
    // Hosts write "infinite" as a huge origin with a huge size, whose sum need not be huge.
    constexpr double huge = std::numeric_limits<float>::max() / 4;
    auto edge = [](double v) { return std::abs(v) >= huge ? std::copysign(inf, v) : v; };
    return {edge(x), edge(y), width >= huge ? inf : edge(x + width), height >= huge ? inf : edge(y + height)};
}

bool Rect::isInfinite() const { return std::isinf(x0) || std::isinf(y0) || std::isinf(x1) || std::isinf(y1); }

bool Rect::contains(const Rect& o) const {
    return o.isEmpty() || (x0 <= o.x0 && y0 <= o.y0 && x1 >= o.x1 && y1 >= o.y1);
}

Rect Rect::intersect(const Rect& o) const {
    if (isEmpty() || o.isEmpty()) return {};
    Rect r{std::max(x0, o.x0), std::max(y0, o.y0), std::min(x1, o.x1), std::min(y1, o.y1)};
    return r.isEmpty() ? Rect{} : r;
}

Rect Rect::unite(const Rect& o) const {
    if (isEmpty()) return o.isEmpty() ? Rect{} : o;
    if (o.isEmpty()) return *this;
    return {std::min(x0, o.x0), std::min(y0, o.y0), std::max(x1, o.x1), std::max(y1, o.y1)};
}

Rect Rect::grown(double dx, double dy) const {
    if (isEmpty()) return {};
    return {x0 - dx, y0 - dy, x1 + dx, y1 + dy};
}

Rect Rect::integral() const {
    if (isEmpty()) return {};
    // The C library's functions are slow, and huge numbers are whole.
    auto low = [](double v) { return std::abs(v) < 1 << 29 ? wholePart(v) : v; };
    auto high = [=](double v) { return -low(-v); };
    return {low(x0), low(y0), high(x1), high(y1)};
}

Affine Affine::rotation(double radians) {
    double c = std::cos(radians), s = std::sin(radians);
    return {c, s, -s, c, 0, 0};
}

Affine Affine::then(const Affine& n) const {
    Point t = n.apply(Point{tx, ty});
    return {n.a * a + n.c * b, n.b * a + n.d * b, n.a * c + n.c * d, n.b * c + n.d * d, t.x, t.y};
}

std::optional<Affine> Affine::inverse() const {
    double det = a * d - b * c;
    if (!(std::abs(det) > 0)) return {};
    Affine i{d / det, -b / det, -c / det, a / det, 0, 0};
    i.tx = -(i.a * tx + i.c * ty);
    i.ty = -(i.b * tx + i.d * ty);
    if (!i.isFinite()) return {};
    return i;
}

Rect Affine::apply(const Rect& r) const {
    if (r.isEmpty()) return {};
    // A factor of zero must not meet an infinite edge.
    auto term = [](double factor, double edge) { return factor == 0 ? 0 : factor * edge; };
    auto low = [&](double f, double e0, double e1) { return std::min(term(f, e0), term(f, e1)); };
    auto high = [&](double f, double e0, double e1) { return std::max(term(f, e0), term(f, e1)); };
    return {low(a, r.x0, r.x1) + low(c, r.y0, r.y1) + tx, low(b, r.x0, r.x1) + low(d, r.y0, r.y1) + ty,
            high(a, r.x0, r.x1) + high(c, r.y0, r.y1) + tx, high(b, r.x0, r.x1) + high(d, r.y0, r.y1) + ty};
}

bool Affine::isFinite() const {
    return std::isfinite(a) && std::isfinite(b) && std::isfinite(c) && std::isfinite(d) &&
           std::isfinite(tx) && std::isfinite(ty);
}

static int wholeAbove(double v) { return -wholePart(-v); }

IntRect toInt(const Rect& r) {
    if (r.isEmpty()) return {};
    return {wholePart(r.x0), wholePart(r.y0), wholeAbove(r.x1), wholeAbove(r.y1)};
}

IntRect centresIn(const Rect& r) {
    if (r.isEmpty()) return {};
    auto edge = [](double v) { return wholeAbove(v - 0.5); };
    return {edge(r.x0), edge(r.y0), edge(r.x1), edge(r.y1)};
}

} // namespace engine
