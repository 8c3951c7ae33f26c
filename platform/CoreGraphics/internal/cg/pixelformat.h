#pragma once

#include <CoreGraphics/CGImage.h>

#include <cg/object.h>

#include <array>
#include <cstdint>
#include <optional>

namespace cg {

/// A row of pixels as floats 0..1: up to four planes of colour, then alpha.
using Planes = std::array<float*, 5>;
constexpr int alphaPlane = 4;

enum class Alpha { none, premultiplied, straight };

/// How the pixels of an image or a bitmap context lie in memory.
struct CG_INTERNAL PixelFormat {
    /// Bits of a component; 32 means float.
    int bits = 8;
    int pixelBits = 32;
    /// Colour components, without alpha: 0 (coverage only), 1, 3 or 4.
    int colors = 3;
    /// Where component k is, counted in samples from the start of the pixel; the last one is alpha's, -1
    /// without.
    std::array<int, 5> offset = {0, 1, 2, 3, -1};
    /// A sample that means nothing, written as full; -1 without.
    int padding = -1;
    Alpha alpha = Alpha::none;
    /// Samples of more than a byte in the order that is not the machine's.
    bool swapped = false;

    std::size_t rowBytes(std::size_t width) const {
        return (width * static_cast<std::size_t>(pixelBits) + 7) / 8;
    }
    bool hasAlpha() const { return alpha != Alpha::none; }

    /// What Core Graphics' numbers mean, with `colors` components in the colour space; empty for a layout
    /// that is not supported.
    static std::optional<PixelFormat> of(std::size_t bits, std::size_t pixelBits, int colors,
                                         CGBitmapInfo info);

    /// Pixels x to x+n-1 of the row to floats, as they are stored: premultiplied or straight. Alpha is 1
    /// without.
    void unpack(const std::uint8_t* row, std::size_t x, std::size_t n, const Planes& out) const;
    /// The way back, rounded and clipped. For 8 bits and more only.
    void pack(std::uint8_t* row, std::size_t x, std::size_t n, const Planes& in) const;
};

/// Heap memory for one row of floats.
class CG_INTERNAL PlaneBuffer {
  public:
    explicit PlaneBuffer(std::size_t width = 0) { resize(width); }
    void resize(std::size_t width);
    const Planes& planes() const { return planes_; }
    /// The planes from pixel x on.
    Planes at(std::size_t x) const;

  private:
    std::unique_ptr<float[]> memory_;
    Planes planes_ = {};
};

} // namespace cg
