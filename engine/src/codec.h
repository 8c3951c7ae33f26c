// Rows of pixels in memory to and from the engine's planes.
#pragma once

#include "tile.h"

namespace engine {

/// Throws std::invalid_argument for sizes that are not positive and a space that does not suit the format.
void checkLayout(const PixelLayout& layout);

/// Conversion between one layout and the colours of one render.
class Codec {
  public:
    Codec(const PixelLayout& layout, const RenderSettings& settings);

    /// The n pixels that begin at `pixels`; n is at most maxSpan.
    void decode(const std::uint8_t* pixels, int n, const Span& out) const;
    /// Overwrites the span.
    void encode(const Span& span, int n, std::uint8_t* pixels) const;

  private:
    PixelLayout layout_;
    int samples_, alpha_;                  // offset of alpha in samples, -1 without
    std::array<int, 3> colour_;            // offsets of r, g, b
    color::ColorSpacePtr space_, working_; // null: numbers as they are
};

} // namespace engine
