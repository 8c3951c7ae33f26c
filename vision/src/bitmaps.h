// Parts of grey bitmaps in other sizes.
#pragma once

#include <vision/faces.h>

namespace vision {

/// A bitmap that holds its pixels, row after row.
struct Grey {
    std::vector<std::uint8_t> pixels;
    int width = 0, height = 0;

    GreyBitmap bitmap() const { return {pixels.data(), width, height, static_cast<std::size_t>(width)}; }
};

/// The part of `source` from (`x`, `y`), its pixels `step` apart: enlarged when `step` is less than 1, and
/// averaged over when it is more. What lies outside of `source` repeats its edge.
Grey resampled(const GreyBitmap& source, double x, double y, double step, int width, int height);

/// Left and right exchanged.
Grey mirrored(const GreyBitmap& source);

} // namespace vision
