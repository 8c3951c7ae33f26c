// A bitmap that images are rendered into again and again.
#pragma once

#include "Shim.h"

namespace ci {

class Accumulator {
  public:
    /// Transparent. Null if the rectangle, made whole, cannot be pixels, and for an unknown format or a space
    /// that is not RGB. A null space means sRGB for 8 bits and linear sRGB for more.
    static std::unique_ptr<Accumulator> make(CGRect extent, int format, CGColorSpaceRef space,
                                             Failure& failure);

    CGRect extent() const { return extent_; }
    int format() const { return format_; }
    /// What it holds now; later renderings do not change the image.
    engine::Image image() const;
    /// Replaces what is inside of `dirty`, made whole.
    void set(const engine::Image& image, CGRect dirty, Failure& failure);
    void clear(Failure& failure);

  private:
    Accumulator() = default;
    /// Leaves the pixels alone that an image still reads.
    void detach(bool keep);

    CGRect extent_;
    int format_ = 0;
    cg::Retained<CGColorSpaceRef> space_;
    std::size_t rowBytes_ = 0;
    std::shared_ptr<std::vector<std::uint8_t>> pixels_;
};

} // namespace ci
