// CIPixellate: squares of one colour each.
#include "cells.h"

namespace engine {

namespace {

class Squares : public Cells {
  public:
    explicit Squares(double side) : side_(side) {}
    CellPlace find(double x, double y) const override {
        return {static_cast<int>(std::floor(x / side_ + 0.5)), static_cast<int>(std::floor(y / side_ + 0.5)),
                1};
    }
    double reach() const override { return side_; }

  private:
    double side_;
};

/// At the centre is the middle of a square.
Image build(const Inputs& in) {
    return meansOfCells(in, std::make_shared<Squares>(cellSize(in, "inputScale")));
}

const Registrar filter{{"CIPixellate",
                        "Pixelate",
                        "Makes a picture of squares of one colour each.",
                        "10.4",
                        categories("Stylize Video StillImage BuiltIn"),
                        {imageInput(), cellCentreInput(),
                         numberInput("inputScale", "Scale", "Distance",
                                     {.value = 8, .min = 1, .sliderMin = 1, .sliderMax = 100})},
                        build}};

} // namespace

} // namespace engine
