// The blend modes.
#pragma once

#include <CoreGraphics/CGContext.h>

#include <cg/pixelformat.h>

namespace cg {

/// Combines a row of source pixels with the destination's, both premultiplied, and mixes the result with the
/// destination by `coverage`.
void blendRow(CGBlendMode mode, int colors, const Planes& dest, const Planes& source, const float* coverage,
              std::size_t n);

} // namespace cg
