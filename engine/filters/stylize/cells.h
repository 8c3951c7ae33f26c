// What CIPixellate, CIHexagonalPixellate, CICrystallize and CIPointillize share: pictures in cells of one
// colour each.
#pragma once

#include "filter.h"
#include "kernel.h"

#include <cmath>

namespace engine {

/// Which cell a pixel belongs to, and how much of the pixel shows it.
struct CellPlace {
    int i, j;
    float coverage;
};

class Cells {
  public:
    virtual ~Cells() = default;
    /// Of the point (x, y) from the centre of the pattern.
    virtual CellPlace find(double x, double y) const = 0;
    /// No two points of a cell are farther apart in x or y.
    virtual double reach() const = 0;
};

/// Each pixel as the mean of its cell; the pattern's centre is inputCenter. (That a cell shows its mean is
/// what these filters promise; the sizes and places of cells are ours.)
Image meansOfCells(const Inputs& in, std::shared_ptr<const Cells> cells);

/// The size of a cell, limited to what is computed in reasonable time.
inline double cellSize(const Inputs& in, const char* key) { return in.number(key, 1, 250); }

inline InputInfo cellCentreInput() { return vectorInput("inputCenter", "Center", "Position", {150, 150}); }

} // namespace engine
