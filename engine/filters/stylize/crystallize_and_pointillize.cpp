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
    void displace(int x, int y, int n, float* dx, float* dy) const override {
        double v = (y + 0.5 - centre_.y) / side_;
        for (int i = 0; i < n;) {
            auto u = [&] { return (x + i + 0.5 - centre_.x) / side_; };
            Nearest nearest = nearestTo(u(), v);
            // The point stays the nearest for as long as the way is shorter than half its lead over the next,
            // so large crystals are quicker than small ones.
            int end = std::min(n, i + 1 + static_cast<int>(nearest.lead * side_ / 2 * (1 - 1e-9)));
            for (; i < end; ++i) {
                dx[i] = static_cast<float>((nearest.point.x - u()) * side_);
                dy[i] = static_cast<float>((nearest.point.y - v) * side_);
            }
        }
    }

  private:
    /// In units of a square.
    struct Nearest {
        Point point;
        double lead; // how much farther away the next one is, at least
    };
    static Nearest nearestTo(double u, double v) {
        // Squared distances; what lies beyond the squares around is two or more away.
        double least = 4, second = 4;
        Point best;
        int column = static_cast<int>(std::floor(u)), row = static_cast<int>(std::floor(v));
        // How far, squared, a position is at least from what lies in a column or row of squares.
        auto away = [](double position, int square) {
            double d = std::max({square - position, position - square - 1, 0.0});
            return d * d;
        };
        for (int dj : {0, -1, 1, -2, 2}) {
            int j = row + dj;
            if (away(v, j) >= second) continue;
            for (int di : {0, -1, 1, -2, 2}) {
                int i = column + di;
                if (away(u, i) + away(v, j) >= second) continue;
                std::uint32_t random = scrambled(i, j);
                Point point{i + (random & 0xffff) / 65536.0, j + (random >> 16) / 65536.0};
                double square = (point.x - u) * (point.x - u) + (point.y - v) * (point.y - v);
                if (square < least) {
                    second = std::exchange(least, square);
                    best = point;
                } else {
                    second = std::min(second, square);
                }
            }
        }
        return {best, std::sqrt(second) - std::sqrt(least)};
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
