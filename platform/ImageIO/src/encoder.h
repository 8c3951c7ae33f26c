// Writing image files, in plain C++: rows in, bytes out.
#pragma once

#include "metadata.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace imageio {

/// One image to be written.
struct OutputImage {
    std::size_t width = 0, height = 0;
    /// 8 or 16.
    int bits = 8;
    /// 1 or 3, and straight alpha after them.
    int colors = 3;
    bool hasAlpha = false;
    /// The profile of the pixels; may be empty.
    std::span<const std::uint8_t> icc;
    /// True if the profile is sRGB's, for which some formats have a short form.
    bool isSRGB = false;
    double dpiX = 72, dpiY = 72;
    int orientation = 1;
    /// What is known of the picture beside its pixels.
    Metadata metadata;
    /// 0 to 1, for lossy formats.
    double quality = 0.85;
    /// Fills `out` with `count` rows from `first` on, tightly packed, words in the machine's byte order.
    std::function<void(std::size_t first, std::size_t count, std::uint8_t* out)> rows;

    std::size_t rowBytes() const { return width * static_cast<std::size_t>((colors + hasAlpha) * bits / 8); }
};

/// A whole file; empty if the format cannot hold the images. May throw std::bad_alloc.
using Encoder = std::vector<std::uint8_t> (*)(std::span<const OutputImage> images);

std::vector<std::uint8_t> encodePNG(std::span<const OutputImage> images);
/// For 8 bits without alpha only.
std::vector<std::uint8_t> encodeJPEG(std::span<const OutputImage> images);
/// For 8 bits without alpha only.
std::vector<std::uint8_t> encodeBMP(std::span<const OutputImage> images);
/// For 8 bits only.
std::vector<std::uint8_t> encodeGIF(std::span<const OutputImage> images);
std::vector<std::uint8_t> encodeTIFF(std::span<const OutputImage> images);
/// For 8 bits only; without loss at quality 1.
std::vector<std::uint8_t> encodeWebP(std::span<const OutputImage> images);

} // namespace imageio
