#include "shapes.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace studio::shapes {

Shape line(Point from, Point to, Pen pen) {
    if (to.x < from.x) std::swap(from, to);
    double w = pen.width, h = pen.height;
    // The hull of the pen at both ends, clockwise.
    if (to.y >= from.y)
        return {{from,
                 {from.x + w, from.y},
                 {to.x + w, to.y},
                 {to.x + w, to.y + h},
                 {to.x, to.y + h},
                 {from.x, from.y + h}}};
    return {
        {from, to, {to.x + w, to.y}, {to.x + w, to.y + h}, {from.x + w, from.y + h}, {from.x, from.y + h}}};
}

Shape polygon(std::vector<Point> corners) { return {std::move(corners)}; }

Shape polygonFrame(const std::vector<Point>& corners, Pen pen) {
    Shape result;
    for (std::size_t i = 0; i < corners.size(); ++i)
        result.push_back(line(corners[i], corners[(i + 1) % corners.size()], pen).front());
    return result;
}

Shape roundRect(Box box, Pen arcs) {
    if (box.width <= 0 || box.height <= 0) return {};
    double rx = std::clamp(arcs.width, 0.0, box.width) / 2, ry = std::clamp(arcs.height, 0.0, box.height) / 2;
    if (rx == 0 || ry == 0) rx = ry = 0; // plain corners
    // A chord leaves at most this of a pixel out; ovals beyond some 200000 pixels have the most corners.
    constexpr double kTolerance = 0.002;
    constexpr double kMostSteps = 4096; // of a quarter
    constexpr double kQuarter = std::numbers::pi / 2;
    double steps =
        std::clamp(std::ceil(kQuarter * std::sqrt(std::max(rx, ry) / (8 * kTolerance))), 1.0, kMostSteps);
    double left = box.x + rx, right = box.x + box.width - rx, top = box.y + ry,
           bottom = box.y + box.height - ry;
    std::vector<Point> outline;
    double start = 0;
    for (Point centre : {Point{right, bottom}, {left, bottom}, {left, top}, {right, top}}) {
        for (double i = 0; i <= steps; ++i) {
            double angle = start + kQuarter * i / steps;
            outline.push_back({centre.x + rx * std::cos(angle), centre.y + ry * std::sin(angle)});
        }
        start += kQuarter;
    }
    return {std::move(outline)};
}

Shape roundRectFrame(Box box, Pen arcs, Pen pen) {
    Shape result = roundRect(box, arcs);
    arcs = {std::min(arcs.width, box.width), std::min(arcs.height, box.height)};
    Shape hole = roundRect(
        {box.x + pen.width, box.y + pen.height, box.width - 2 * pen.width, box.height - 2 * pen.height},
        {arcs.width - 2 * pen.width, arcs.height - 2 * pen.height});
    for (auto& outline : hole) {
        std::reverse(outline.begin(), outline.end());
        result.push_back(std::move(outline));
    }
    return result;
}

Shape moved(const Shape& shape, Point by) {
    Shape result = shape;
    for (std::vector<Point>& outline : result)
        for (Point& p : outline) p = {p.x + by.x, p.y + by.y};
    return result;
}

Box intersection(Box a, Box b) {
    double x = std::max(a.x, b.x), y = std::max(a.y, b.y);
    double right = std::min(a.x + a.width, b.x + b.width), bottom = std::min(a.y + a.height, b.y + b.height);
    return {x, y, std::max(0.0, right - x), std::max(0.0, bottom - y)};
}

namespace {

// Sutherland and Hodgman: against one border at a time.
template <class Distance>
void clip(std::vector<Point>& outline, Distance inside) { // positive inside
    std::vector<Point> result;
    for (std::size_t i = 0; i < outline.size(); ++i) {
        Point p = outline[i], q = outline[(i + 1) % outline.size()];
        double a = inside(p), b = inside(q);
        if (a >= 0) result.push_back(p);
        if ((a >= 0) != (b >= 0)) {
            double t = a / (a - b);
            result.push_back({p.x + (q.x - p.x) * t, p.y + (q.y - p.y) * t});
        }
    }
    outline = std::move(result);
}

} // namespace

Shape clipped(const Shape& shape, Box box) {
    Shape result = shape;
    for (std::vector<Point>& outline : result) {
        clip(outline, [&](Point p) { return p.x - box.x; });
        clip(outline, [&](Point p) { return box.x + box.width - p.x; });
        clip(outline, [&](Point p) { return p.y - box.y; });
        clip(outline, [&](Point p) { return box.y + box.height - p.y; });
    }
    return result;
}

} // namespace studio::shapes
