// Geometry of pixels: double precision, y downwards, pixel (0, 0) covers 0..1.
#pragma once

#include <CoreGraphics/CGAffineTransform.h>

#include <algorithm>
#include <cmath>
#include <optional>

namespace cg {

struct Point {
    double x = 0, y = 0;
};

struct IntRect {
    int x0 = 0, y0 = 0, x1 = 0, y1 = 0;

    int width() const { return std::max(0, x1 - x0); }
    int height() const { return std::max(0, y1 - y0); }
    bool isEmpty() const { return x0 >= x1 || y0 >= y1; }
    IntRect intersect(const IntRect& r) const {
        return {std::max(x0, r.x0), std::max(y0, r.y0), std::min(x1, r.x1), std::min(y1, r.y1)};
    }
    bool operator==(const IntRect&) const = default;
};

struct Matrix {
    double a = 1, b = 0, c = 0, d = 1, tx = 0, ty = 0;

    static Matrix from(const CGAffineTransform& t) { return {t.a, t.b, t.c, t.d, t.tx, t.ty}; }
    Point apply(Point p) const { return {a * p.x + c * p.y + tx, b * p.x + d * p.y + ty}; }
    /// This one first.
    Matrix then(const Matrix& m) const {
        return {a * m.a + b * m.c, a * m.b + b * m.d,          c * m.a + d * m.c,
                c * m.b + d * m.d, tx * m.a + ty * m.c + m.tx, tx * m.b + ty * m.d + m.ty};
    }
    /// Empty when there is none.
    std::optional<Matrix> inverse() const {
        double det = a * d - b * c;
        Matrix m = {d / det, -b / det, -c / det, a / det, (c * ty - d * tx) / det, (b * tx - a * ty) / det};
        bool finite = std::isfinite(m.a) && std::isfinite(m.b) && std::isfinite(m.c) && std::isfinite(m.d) &&
                      std::isfinite(m.tx) && std::isfinite(m.ty);
        return det != 0 && finite ? std::optional(m) : std::nullopt;
    }
};

/// Truncates to an int; coordinates out of range are clamped.
inline int toInt(double v) { return static_cast<int>(std::clamp(v, -1e9, 1e9)); }

} // namespace cg
