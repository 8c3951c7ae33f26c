// What CIRowAverage, CIColumnAverage and CIAreaHistogram share: an area in one row of pixels.
#pragma once

#include "filter.h"

#include <functional>

namespace engine {

using RowSums = std::vector<std::array<double, 4>>;

/// How an area becomes a row of `count` pixels: the sums of each, times `scale`.
struct AreaRow {
    int count;
    double scale;
    /// Takes in the n pixels of row y of the area, both counted from the area's corner.
    std::function<void(RowSums& sums, int y, const Span& pixels, int n)> add;
};

/// The row of inputExtent's area, which `how` is asked about; null without an image, empty for an empty area.
Image areaRow(const Inputs& in, AreaRow (*how)(const Inputs& in, const IntRect& area));

inline InputInfo rowExtentInput() {
    return vectorInput("inputExtent", "Extent", "Rectangle", {0, 0, 640, 80});
}

} // namespace engine
