// Pixels of 16-bit floats, which the engine does not know: read as floats, and written from them.
#pragma once

#include <engine/engine.h>

namespace ci {

float floatOfHalf(std::uint16_t half);
/// Rounds to the nearest, ties to even; what is too large becomes infinite.
std::uint16_t halfOfFloat(float value);

/// An image of premultiplied RGBA pixels of four halves each. Null pixels are not allowed.
engine::Image imageOfHalves(const engine::PixelLayout& layout, const void* pixels, std::size_t rowBytes,
                            std::shared_ptr<const void> owner);
/// Renders a part of the size of the target, whose pixels are halves though its layout says RGBAf.
void renderHalves(const engine::Image& image, const engine::Rect& area, const engine::Target& target,
                  const engine::Options& options);

} // namespace ci
