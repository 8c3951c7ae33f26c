// The analysis behind automatic adjustment, in plain C++.
#pragma once

#include "Shim.h"

#include <optional>
#include <vector>

namespace ci {

/// A face in the picture's coordinates.
struct Face {
    engine::Rect bounds;
    std::vector<engine::Point> eyes;
};

struct AdjustOptions {
    bool enhance = true, redEye = true;
};

/// A filter and its inputs besides the picture.
struct Adjustment {
    std::string filter;
    engine::Values values;
};

/// The filters to apply to the picture, in order: red eyes and face balance if a face needs them, then
/// vibrance, tone curve, highlights and shadows. Empty for a picture that is unbounded or transparent.
/// Analyses a reduced copy, so that memory does not grow with the picture.
std::vector<Adjustment> adjustments(const engine::Image& image, const std::vector<Face>& faces,
                                    const AdjustOptions& options, Failure& failure);

} // namespace ci
