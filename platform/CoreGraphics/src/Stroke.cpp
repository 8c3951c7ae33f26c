// Outlines of stroked lines.
#include "Stroke.h"

namespace cg {

namespace {

constexpr double miterLimit = 10;

Point operator+(Point p, Point q) { return {p.x + q.x, p.y + q.y}; }
Point operator-(Point p, Point q) { return {p.x - q.x, p.y - q.y}; }
Point operator*(Point p, double s) { return {p.x * s, p.y * s}; }
double cross(Point p, Point q) { return p.x * q.y - p.y * q.x; }
double dot(Point p, Point q) { return p.x * q.x + p.y * q.y; }

class Stroker {
  public:
    Stroker(double halfWidth, const Matrix& userToDevice) : half_(halfWidth), toDevice_(userToDevice) {}

    void segment(Point p, Point q) {
        Point n = normal(p, q);
        emit({p + n, q + n, q - n, p - n});
    }

    /// Fills the wedge between two segments on the outer side of the corner.
    void join(Point p, Point corner, Point q) {
        Point n0 = normal(p, corner), n1 = normal(corner, q);
        if (cross(n0, n1) > 0) {
            n0 = n0 * -1;
            n1 = n1 * -1;
        }
        Polygon wedge = {corner, corner + n0, corner + n1};
        // The tip lies along n0 + n1, where the two outer edges meet.
        Point sum = n0 + n1;
        double length2 = dot(sum, sum);
        if (length2 * miterLimit * miterLimit >= 4 * half_ * half_)
            wedge.insert(wedge.begin() + 2, corner + sum * (2 * half_ * half_ / length2));
        emit(wedge);
    }

    std::vector<Polygon> take() { return std::move(outlines_); }

  private:
    Point normal(Point p, Point q) const {
        Point along = q - p;
        double length = std::hypot(along.x, along.y);
        return {-along.y / length * half_, along.x / length * half_};
    }

    void emit(Polygon outline) {
        double area = 0;
        for (Point& p : outline) p = toDevice_.apply(p);
        for (std::size_t i = 0; i < outline.size(); ++i)
            area += cross(outline[i], outline[(i + 1) % outline.size()]);
        if (area < 0) std::reverse(outline.begin(), outline.end());
        outlines_.push_back(std::move(outline));
    }

    double half_;
    Matrix toDevice_;
    std::vector<Polygon> outlines_;
};

} // namespace

std::vector<Polygon> strokeOutlines(const std::vector<Subpath>& path, double width,
                                    const Matrix& userToDevice) {
    auto toUser = userToDevice.inverse();
    if (!toUser || !(width > 0)) return {};
    Stroker stroker(width / 2, userToDevice);
    for (const Subpath& subpath : path) {
        std::vector<Point> points;
        for (const Point& devicePoint : subpath.points) {
            Point p = toUser->apply(devicePoint);
            if (points.empty() || p.x != points.back().x || p.y != points.back().y) points.push_back(p);
        }
        std::size_t n = points.size();
        if (subpath.closed && n > 1 && points.front().x == points.back().x &&
            points.front().y == points.back().y)
            --n;
        if (n < 2) continue;
        std::size_t segments = subpath.closed ? n : n - 1;
        for (std::size_t i = 0; i < segments; ++i) stroker.segment(points[i], points[(i + 1) % n]);
        for (std::size_t i = subpath.closed ? 0 : 1; i < segments; ++i)
            stroker.join(points[(i + n - 1) % n], points[i], points[(i + 1) % n]);
    }
    return stroker.take();
}

} // namespace cg
