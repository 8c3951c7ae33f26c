// Pixel layouts under their three names: Core Image's, Core Graphics' and the engine's.
#pragma once

#include <cg/image.h>
#include <engine/engine.h>

#include <optional>

namespace ci {

struct CoreImageFormat {
    int code;
    engine::Format layout;
    /// As Core Graphics says it, premultiplied.
    CGBitmapInfo info;
};

/// Null for a code that is not one of the kCIFormat constants.
const CoreImageFormat* formatNamed(int code);
/// The code of the format that keeps components of so many bits.
int formatForBits(int bits);

/// The engine's name for a layout of Core Graphics, without a size; empty when it has none.
std::optional<engine::PixelLayout> layoutOf(const cg::PixelFormat& format, CGColorSpaceRef space);

} // namespace ci
