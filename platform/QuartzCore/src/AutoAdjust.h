// What a picture needs: the analysis behind automatic adjustment, in plain C++.
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

/// A filter and the inputs that it needs beside the picture.
struct Adjustment {
    std::string filter;
    engine::Values values;
};

/// The filters to apply to the picture, one after the other: red eyes and face balance only where a face asks
/// for them, then vibrance, tone curve, highlights and shadows. Empty for a picture without bounds or without
/// anything to see. Looks at a reduced copy, so that memory does not grow with the picture.
std::vector<Adjustment> adjustments(const engine::Image& image, const std::vector<Face>& faces,
                                    const AdjustOptions& options, Failure& failure);

} // namespace ci
