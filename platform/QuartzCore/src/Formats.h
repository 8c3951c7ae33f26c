// Pixel layouts under their three names: Core Image's, Core Graphics' and the engine's.
#pragma once

#include <cg/image.h>
#include <engine/engine.h>

#include <optional>

namespace ci {

struct CoreImageFormat {
    int code;
    engine::Format layout;
    /// The same layout for Core Graphics, premultiplied.
    CGBitmapInfo info;
    /// In memory, the engine's floats have 16 bits each.
    bool halves = false;

    std::size_t bytesPerPixel() const { return halves ? 8 : engine::bytesPerPixel(layout); }
    bool isBytes() const { return bytesPerPixel() == 4; }
};

/// Null for a code that is not one of the kCIFormat constants.
const CoreImageFormat* formatNamed(int code);
/// The code of the format for components of that many bits.
int formatForBits(int bits);

/// The engine's layout for one of Core Graphics, without a size; empty if the engine has none.
std::optional<engine::PixelLayout> layoutOf(const cg::PixelFormat& format, CGColorSpaceRef space);

} // namespace ci
