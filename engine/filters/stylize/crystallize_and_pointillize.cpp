// CICrystallize, CIPointillize: crystals and dots of one colour each.
#include "cells.h"

#include <cmath>
#include <utility>

namespace engine {

namespace {

/// A warp to the nearest of many points. One point lies anywhere in each square of a grid, whose squares are
/// as large as a disc of the radius.
class Crystals : public Warp {
  public:
    Crystals(Point centre, double radius)
        : centre_(centre), side_(radius * std::sqrt(pi)), reach_(side_ * std::numbers::sqrt2) {}

    std::string name() const override { return "crystals"; }
    Rect extent(const Rect& source) const override { return source.grown(reach_, reach_); }
    Rect region(const Rect& area) const override { return area.grown(reach_, reach_); }
    /// Along a row the squared distance from a point is u^2 plus something linear, so that the nearest points
    /// are found from left to right as the lower envelope of lines (P. F. Felzenszwalb and D. P.
    /// Huttenlocher, "Distance transforms of sampled functions", 2012).
    void displace(int x, int y, int n, float* dx, float* dy) const override {
        double v = (y + 0.5 - centre_.y) / side_;
        auto column = [&](int i) { return wholePart((x + i + 0.5 - centre_.x) / side_); };
        std::vector<Nearest> nearest;
        for (int i = column(0) - 2, last = column(n - 1) + 2; i <= last; ++i)
            eachPoint(i, v, [&](const Point& point) { add(nearest, point, v); });
        int first = 0;
        for (std::size_t k = 0; k < nearest.size() && first < n; ++k) {
            int end = k + 1 < nearest.size() ? std::clamp(pixelAt(nearest[k + 1].from) - x, first, n) : n;
            // As a difference of doubles, since pixels can be far from the origin.
            double toX = nearest[k].point.x * side_ + centre_.x - 0.5 - x;
            eachIndex(end - first, [=, to = dx + first](int i)
                                       SIMD_INLINE { to[i] = static_cast<float>(toX - (first + i)); });
            std::fill(dy + first, dy + end, static_cast<float>((nearest[k].point.y - v) * side_));
            first = end;
        }
    }

  private:
    /// A point, in units of a square, and from where on along the row it is the nearest.
    struct Nearest {
        Point point;
        double from;
    };
    static void add(std::vector<Nearest>& nearest, Point point, double v) {
        double from = -Rect::inf;
        while (!nearest.empty()) {
            const auto& [last, lastFrom] = nearest.back();
            double apart = point.x - last.x, square = (point.y - v) * (point.y - v),
                   lastSquare = (last.y - v) * (last.y - v);
            if (apart == 0 && square >= lastSquare) return;
            from = (point.x + last.x + (square - lastSquare) / apart) / 2;
            if (apart > 0 && from > lastFrom) break;
            nearest.pop_back();
            from = -Rect::inf;
        }
        nearest.push_back({point, from});
    }
    /// The first pixel of a row whose centre is not left of `u`.
    int pixelAt(double u) const { return -wholePart(-(u * side_ + centre_.x - 0.5)); }

    /// Calls work(point) for the points of a column of squares that can be the nearest of a row, from left to
    /// right. The own square's point is less than the root of 2 away.
    template <class Work>
    static void eachPoint(int column, double v, Work work) {
        std::array<Point, 5> points;
        int count = 0;
        for (int j = wholePart(v) - 2, last = j + 4; j <= last; ++j) {
            std::uint32_t random = scrambled(column, j);
            Point point{column + (random & 0xffff) / 65536.0, j + (random >> 16) / 65536.0};
            if ((point.y - v) * (point.y - v) >= 2) continue;
            int k = count++;
            for (; k > 0 && points[k - 1].x > point.x; --k) points[k] = points[k - 1];
            points[k] = point;
        }
        std::for_each_n(points.begin(), count, work);
    }

    /// Bits that look random, always the same for a square (the finishing steps of G. L. Steele and others'
    /// SplitMix, 2014, for 32 bits).
    static std::uint32_t scrambled(int i, int j) {
        std::uint32_t z =
            static_cast<std::uint32_t>(i) * 0x9e3779b9u + static_cast<std::uint32_t>(j) * 0x85ebca6bu;
        z = (z ^ (z >> 16)) * 0x85ebca6bu;
        z = (z ^ (z >> 13)) * 0xc2b2ae35u;
        return z ^ (z >> 16);
    }

    Point centre_;
    double side_, reach_;
};

// At the centre is the corner of a square of the grid. (Where the points lie is our own: Core Image's places
// are not known.)

Image crystals(const Inputs& in) {
    return warp(in.image("inputImage"),
                std::make_shared<Crystals>(cellCentre(in), cellSize(in, "inputRadius")));
}

/// A dot ends where it is farther from its point than the radius.
Image dots(const Inputs& in) {
    double radius = cellSize(in, "inputRadius");
    auto crystals = std::make_shared<Crystals>(cellCentre(in), radius);
    return weighted(warp(in.image("inputImage"), crystals), "dots",
                    [=, edge = static_cast<float>(radius + 0.5)](int x, int y, int n, float* weights) {
                        alignas(32) float dx[maxSpan], dy[maxSpan];
                        crystals->displace(x, y, n, dx, dy);
                        eachIndex(n, [=, dx = dx, dy = dy](int i) SIMD_INLINE {
                            weights[i] = simd::unit(edge - simd::sqrt(dx[i] * dx[i] + dy[i] * dy[i]));
                        });
                    });
}

FilterInfo info(const char* name, const char* displayName, const char* description, Source source,
                Image (*build)(const Inputs&)) {
    return {name,
            displayName,
            description,
            source,
            "10.4",
            categories("Stylize Video StillImage BuiltIn"),
            {imageInput(),
             numberInput("inputRadius", "Radius", "Distance",
                         {.value = 20, .identity = 1, .min = 1, .sliderMin = 1, .sliderMax = 100}),
             cellCentreInput()},
            build};
}

const Registrar crystallize{info("CICrystallize", "Crystallize",
                                 "Makes a picture of crystals of one colour each.",
                                 ourOwn("the nearest of one random point for each square"), crystals)};
const Registrar pointillize{info("CIPointillize", "Pointillize",
                                 "Paints a picture with dots of one colour each.",
                                 ourOwn("the nearest of one random point for each square, as a dot"), dots)};

} // namespace

} // namespace engine
