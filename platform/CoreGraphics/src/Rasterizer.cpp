// Pixel coverage of outlines: each edge adds the change of coverage from left to right to the pixels that it
// crosses; the running sum along a row is then the signed area of the outlines in each pixel.
#include "Rasterizer.h"

#include <utility>

namespace cg {

void Rasterizer::add(const Polygon& outline) {
    for (const Point& p : outline)
        if (!std::isfinite(p.x) || !std::isfinite(p.y)) return;
    for (std::size_t i = 0; i < outline.size(); ++i) {
        const Point &p = outline[i], &q = outline[i + 1 < outline.size() ? i + 1 : 0];
        edges_.push_back({p, q});
        minX_ = std::min(minX_, p.x);
        maxX_ = std::max(maxX_, p.x);
        minY_ = std::min(minY_, p.y);
        maxY_ = std::max(maxY_, p.y);
    }
}

IntRect Rasterizer::bounds() const {
    if (edges_.empty()) return {};
    return clip_.intersect({toInt(std::floor(minX_)), toInt(std::floor(minY_)), toInt(std::ceil(maxX_)),
                            toInt(std::ceil(maxY_))});
}

const std::vector<float>& Rasterizer::band(int y0, int y1, Rule rule, bool antialias) {
    IntRect all = bounds();
    band_ = {all.x0, y0, all.x1, y1};
    auto width = static_cast<std::size_t>(band_.width()), height = static_cast<std::size_t>(band_.height());
    sums_.assign((width + 2) * height, 0);
    coverage_.resize(width * height);
    for (const Edge& e : edges_) addEdge(e.from, e.to);
    for (std::size_t y = 0; y < height; ++y) {
        float sum = 0;
        for (std::size_t x = 0; x < width; ++x) {
            sum += sums_[y * (width + 2) + x];
            float area = std::fabs(sum);
            if (rule == Rule::evenOdd) {
                area -= 2 * std::floor(area / 2);
                if (area > 1) area = 2 - area;
            }
            // The sums carry rounding errors, which must not tint full and empty pixels.
            float covered = area > 0.9999f ? 1.f : area < 0.0001f ? 0.f : area;
            coverage_[y * width + x] = antialias ? covered : covered >= 0.5f ? 1.f : 0.f;
        }
    }
    return coverage_;
}

/// Clips an edge to the band. Parts above, below and to the right of it change no pixel; parts to the left
/// move to the left border, because they change the whole row.
void Rasterizer::addEdge(Point p, Point q) {
    if (p.y == q.y) return;
    double direction = 1;
    if (p.y > q.y) {
        std::swap(p, q);
        direction = -1;
    }
    auto at = [p, q](double y) { return p.x + (q.x - p.x) * ((y - p.y) / (q.y - p.y)); };
    double top = std::max<double>(p.y, band_.y0), bottom = std::min<double>(q.y, band_.y1);
    if (top >= bottom) return;
    double left = band_.x0, right = band_.x1, height = band_.y0;
    Point from = {at(top) - left, top - height}, to = {at(bottom) - left, bottom - height};
    // Split where the edge crosses the left and the right border.
    double cuts[2] = {2, 2};
    int count = 0;
    for (double border : {0., right - left})
        if ((from.x < border) != (to.x < border)) cuts[count++] = (border - from.x) / (to.x - from.x);
    if (cuts[0] > cuts[1]) std::swap(cuts[0], cuts[1]);
    Point begin = from;
    for (int i = 0; i <= count; ++i) {
        Point end = to;
        if (i < count) end = {from.x + (to.x - from.x) * cuts[i], from.y + (to.y - from.y) * cuts[i]};
        double middle = (begin.x + end.x) / 2, width = right - left;
        if (middle <= 0)
            addClipped({0, begin.y}, {0, end.y}, direction);
        else if (middle < width)
            addClipped({std::clamp(begin.x, 0., width), begin.y}, {std::clamp(end.x, 0., width), end.y},
                       direction);
        begin = end;
    }
}

void Rasterizer::addClipped(Point p, Point q, double direction) {
    if (q.y <= p.y) return;
    double slope = (q.x - p.x) / (q.y - p.y), low = std::min(p.x, q.x), high = std::max(p.x, q.x);
    std::size_t stride = static_cast<std::size_t>(band_.width()) + 2;
    for (int y = static_cast<int>(p.y); y < band_.height() && y < q.y; ++y) {
        double top = std::max<double>(y, p.y), bottom = std::min<double>(y + 1, q.y);
        double x0 = std::clamp(p.x + slope * (top - p.y), low, high);
        double x1 = std::clamp(p.x + slope * (bottom - p.y), low, high);
        if (x0 > x1) std::swap(x0, x1);
        double amount = direction * (bottom - top);
        float* sums = sums_.data() + static_cast<std::size_t>(y) * stride;
        auto first = static_cast<std::size_t>(x0), last = static_cast<std::size_t>(x1);
        if (first == last) {
            double right = (x0 + x1) / 2 - static_cast<double>(first);
            sums[first] += static_cast<float>(amount * (1 - right));
            sums[first + 1] += static_cast<float>(amount * right);
            continue;
        }
        // The edge crosses several pixels of the row: the covered area grows as the integral of the part
        // crossed.
        double perPixel = amount / (x1 - x0);
        double before = 0;
        for (std::size_t i = first; i <= last; ++i) {
            double enter = std::max(x0, static_cast<double>(i)),
                   leave = std::min(x1, static_cast<double>(i + 1));
            // Crossed inside this pixel, on average at (enter + leave) / 2.
            double area = perPixel * (leave - enter) * (static_cast<double>(i + 1) - (enter + leave) / 2);
            double passed = perPixel * (leave - enter);
            sums[i] += static_cast<float>(area + before);
            before = passed - area;
        }
        sums[last + 1] += static_cast<float>(before);
    }
}

} // namespace cg
