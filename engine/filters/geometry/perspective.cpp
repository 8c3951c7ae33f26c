// Projective maps, and pictures whose corners are brought to four points.
#include "perspective.h"

#include <cmath>

namespace engine::perspective {

std::optional<Projection> Projection::toQuad(Point p00, Point p10, Point p11, Point p01) {
    double sx = p00.x - p10.x + p11.x - p01.x, sy = p00.y - p10.y + p11.y - p01.y;
    double dx1 = p10.x - p11.x, dx2 = p01.x - p11.x, dy1 = p10.y - p11.y, dy2 = p01.y - p11.y;
    double determinant = dx1 * dy2 - dx2 * dy1;
    double g = (sx * dy2 - dx2 * sy) / determinant, h = (dx1 * sy - sx * dy1) / determinant;
    if (!std::isfinite(g) || !std::isfinite(h)) return {};
    return Projection{{p10.x - p00.x + g * p10.x, p01.x - p00.x + h * p01.x, p00.x, p10.y - p00.y + g * p10.y,
                       p01.y - p00.y + h * p01.y, p00.y, g, h, 1}};
}

Projection Projection::then(const Projection& next) const {
    Projection out{};
    for (int i = 0; i < 9; ++i)
        for (int k = 0; k < 3; ++k) out.m[i] += next.m[i / 3 * 3 + k] * m[k * 3 + i % 3];
    return out;
}

std::optional<Projection> Projection::inverse() const {
    const auto& a = m;
    Projection adjoint{{a[4] * a[8] - a[5] * a[7], a[2] * a[7] - a[1] * a[8], a[1] * a[5] - a[2] * a[4],
                        a[5] * a[6] - a[3] * a[8], a[0] * a[8] - a[2] * a[6], a[2] * a[3] - a[0] * a[5],
                        a[3] * a[7] - a[4] * a[6], a[1] * a[6] - a[0] * a[7], a[0] * a[4] - a[1] * a[3]}};
    double determinant = a[0] * adjoint.m[0] + a[1] * adjoint.m[3] + a[2] * adjoint.m[6];
    for (double& v : adjoint.m) {
        v /= determinant;
        if (!std::isfinite(v)) return {};
    }
    return adjoint;
}

std::optional<Projection> fromPoints(const Rect& source, const std::array<Point, 4>& corners) {
    if (source.isEmpty() || source.isInfinite()) return {};
    auto unit = Projection::toQuad(corners[0], corners[1], corners[2], corners[3]);
    if (!unit) return {};
    Projection toUnit{{1 / source.width(), 0, -source.x0 / source.width(), 0, 1 / source.height(),
                       -source.y0 / source.height(), 0, 0, 1}};
    auto back = toUnit.then(*unit).inverse();
    if (!back) return {};
    // In front of the horizon is where the first corner is.
    if (back->m[6] * corners[0].x + back->m[7] * corners[0].y + back->m[8] < 0)
        for (double& v : back->m) v = -v;
    return back;
}

std::array<Point, 4> corners(const Inputs& in) {
    return {in.point("inputBottomLeft"), in.point("inputBottomRight"), in.point("inputTopRight"),
            in.point("inputTopLeft")};
}

std::vector<InputInfo> perspectiveInputs() {
    return {imageInput(), vectorInput("inputTopLeft", "Top Left", "Position", {118, 484}),
            vectorInput("inputTopRight", "Top Right", "Position", {646, 507}),
            vectorInput("inputBottomRight", "Bottom Right", "Position", {548, 140}),
            vectorInput("inputBottomLeft", "Bottom Left", "Position", {155, 153})};
}

namespace {

class Perspective : public Warp {
  public:
    Perspective(const Projection& back, const Rect& source, const Rect& result)
        : back_(back), source_(source), result_(result) {}

    std::string name() const override { return "perspective"; }
    Rect extent(const Rect&) const override { return result_; }
    Rect region(const Rect&) const override { return source_; }
    void displace(int x, int y, int n, float* dx, float* dy) const override {
        for (int i = 0; i < n; ++i) {
            Point to{x + i + 0.5, y + 0.5};
            std::optional<Point> from = back_(to);
            // Far beyond the picture there is nothing, either.
            bool near =
                from && source_.grown(2, 2).contains({from->x, from->y, from->x + 1e-9, from->y + 1e-9});
            displaceTo(near ? *from : outside(source_), to, dx[i], dy[i]);
        }
    }

  private:
    Projection back_;
    Rect source_, result_;
};

} // namespace

namespace {

Rect boxAround(const std::array<Point, 4>& points) {
    Rect box{points[0].x, points[0].y, points[0].x, points[0].y};
    for (const Point& p : points)
        box = {std::min(box.x0, p.x), std::min(box.y0, p.y), std::max(box.x1, p.x), std::max(box.y1, p.y)};
    return box;
}

/// Where the pixels of an extent go.
Rect leanedExtent(const Rect& e, const Projection& back) {
    auto forth = back.inverse();
    if (e.isInfinite() || !forth) return Rect::infinite();
    std::array<Point, 4> corners{Point{e.x0, e.y0}, {e.x1, e.y0}, {e.x1, e.y1}, {e.x0, e.y1}};
    for (Point& p : corners) {
        auto seen = (*forth)(p);
        if (!seen || !std::isfinite(seen->x) || !std::isfinite(seen->y)) return Rect::infinite();
        p = *seen;
    }
    return boxAround(corners);
}

} // namespace

Image leaned(const Image& image, const Rect& source, const Inputs& in) {
    const std::array<Point, 4> to = corners(in);
    auto back = fromPoints(source, to);
    if (!back || !image || image->extent().isEmpty()) return empty();
    const Rect& e = image->extent();
    return warp(
        image, std::make_shared<Perspective>(*back, e, e == source ? boxAround(to) : leanedExtent(e, *back)));
}

} // namespace engine::perspective
