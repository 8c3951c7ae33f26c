// CICrystallize, CIPointillize: crystals and dots of one colour each.
#include "cells.h"

namespace engine {

namespace {

/// The places nearest to one of many points. One point lies anywhere in each square of a grid, whose squares
/// are as large as a disc of the radius. A dot ends where it is farther from its point than the radius.
class Crystals : public Cells {
  public:
    Crystals(double radius, bool dots) : side_(radius * std::sqrt(pi)), radius_(radius), dots_(dots) {}
    CellPlace find(double x, double y) const override {
        double u = x / side_, v = y / side_, least = Rect::inf;
        int column = static_cast<int>(std::floor(u)), row = static_cast<int>(std::floor(v));
        CellPlace best{column, row, 1};
        // How far, squared, a position is at least from what lies in a column or row of squares.
        auto away = [](double position, int square) {
            double d = std::max({square - position, position - square - 1, 0.0});
            return d * d;
        };
        for (int dj : {0, -1, 1, -2, 2}) {
            int j = row + dj;
            if (away(v, j) >= least) continue;
            for (int di : {0, -1, 1, -2, 2}) {
                int i = column + di;
                if (away(u, i) + away(v, j) >= least) continue;
                std::uint32_t random = scrambled(i, j);
                double dx = i + (random & 0xffff) / 65536.0 - u, dy = j + (random >> 16) / 65536.0 - v;
                if (double square = dx * dx + dy * dy; square < least) least = square, best.i = i, best.j = j;
            }
        }
        least = std::sqrt(least) * side_;
        if (dots_) best.coverage = static_cast<float>(std::clamp(radius_ + 0.5 - least, 0.0, 1.0));
        return best;
    }
    double reach() const override { return 3 * side_; }

  private:
    /// Bits that look random, always the same for a square (the finishing steps of G. L. Steele and others'
    /// SplitMix, 2014, for 32 bits).
    static std::uint32_t scrambled(int i, int j) {
        std::uint32_t z =
            static_cast<std::uint32_t>(i) * 0x9e3779b9u + static_cast<std::uint32_t>(j) * 0x85ebca6bu;
        z = (z ^ (z >> 16)) * 0x85ebca6bu;
        z = (z ^ (z >> 13)) * 0xc2b2ae35u;
        return z ^ (z >> 16);
    }

    double side_, radius_;
    bool dots_;
};

/// At the centre is the corner of a square of the grid.
template <bool dots>
Image build(const Inputs& in) {
    return meansOfCells(in, std::make_shared<Crystals>(cellSize(in, "inputRadius"), dots));
}

FilterInfo info(const char* name, const char* displayName, const char* description,
                Image (*build)(const Inputs&)) {
    return {name,
            displayName,
            description,
            "10.4",
            categories("Stylize Video StillImage BuiltIn"),
            {imageInput(),
             numberInput("inputRadius", "Radius", "Distance",
                         {.value = 20, .identity = 1, .min = 1, .sliderMin = 1, .sliderMax = 100}),
             cellCentreInput()},
            build};
}

const Registrar crystallize{
    info("CICrystallize", "Crystallize", "Makes a picture of crystals of one colour each.", build<false>)};
const Registrar pointillize{
    info("CIPointillize", "Pointillize", "Paints a picture with dots of one colour each.", build<true>)};

} // namespace

} // namespace engine
