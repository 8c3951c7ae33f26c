// CIHexagonalPixellate: hexagons of one colour each.
#include "cells.h"

namespace engine {

namespace {

class Hexagons : public Cells {
  public:
    explicit Hexagons(double side) : width_(side * std::sqrt(3.0)), height_(side * 1.5) {}
    CellPlace find(double x, double y) const override {
        // The nearest centre is in the row below the point or in that above it.
        int below = static_cast<int>(std::floor(y / height_));
        CellPlace best{0, 0, 1};
        double least = Rect::inf;
        for (int j : {below, below + 1}) {
            double shift = j & 1 ? 0.5 : 0;
            int i = static_cast<int>(std::floor(x / width_ - shift + 0.5));
            double distance = std::hypot(x - (i + shift) * width_, y - j * height_);
            if (distance < least) least = distance, best.i = i, best.j = j;
        }
        return best;
    }
    double reach() const override { return 2 * width_; }

  private:
    double width_, height_;
};

/// At the centre is the middle of a hexagon.
Image build(const Inputs& in) {
    return meansOfCells(in, std::make_shared<Hexagons>(cellSize(in, "inputScale")));
}

const Registrar filter{
    {"CIHexagonalPixellate",
     "Hexagonal Pixelate",
     "Makes a picture of hexagons of one colour each.",
     "10.5",
     categories("Stylize Video StillImage BuiltIn"),
     {imageInput(), cellCentreInput(),
      numberInput("inputScale", "Scale", "Distance",
                  {.value = 8, .identity = 1, .min = 1, .sliderMin = 1, .sliderMax = 100})},
     build}};

} // namespace

} // namespace engine
