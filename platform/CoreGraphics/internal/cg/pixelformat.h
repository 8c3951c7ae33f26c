// Pixel layouts in memory, and rows of pixels as floats.
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
    /// The position of component k, in samples from the start of the pixel; alpha comes last. -1 for none.
    std::array<int, 5> offset = {0, 1, 2, 3, -1};
    /// The position of the filler sample, which is written as its maximum; -1 for none.
    int padding = -1;
    Alpha alpha = Alpha::none;
    /// Samples of several bytes are in the byte order that is not the machine's.
    bool swapped = false;

    std::size_t rowBytes(std::size_t width) const {
        return (width * static_cast<std::size_t>(pixelBits) + 7) / 8;
    }
    bool hasAlpha() const { return alpha != Alpha::none; }

    /// The layout that Core Graphics' numbers describe, with `colors` components in the colour space; empty
    /// for an unsupported one.
    static std::optional<PixelFormat> of(std::size_t bits, std::size_t pixelBits, int colors,
                                         CGBitmapInfo info);

    /// Converts pixels x to x+n-1 of the row to floats, premultiplied or straight as they are stored. A
    /// missing alpha is 1.
    void unpack(const std::uint8_t* row, std::size_t x, std::size_t n, const Planes& out) const;
    /// The reverse, rounded and clipped. For 8 bits and more only.
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
