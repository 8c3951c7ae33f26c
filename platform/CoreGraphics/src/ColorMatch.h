// Colour matching of rows of pixels.
#pragma once

#include <cg/colorspace.h>
#include <cg/pixelformat.h>

namespace cg {

/// Converts rows of straight colour from one space to another.
class ColorMatch {
  public:
    /// Nothing is converted when either is null. `extended` keeps colours outside 0..1.
    ColorMatch(const ColorSpace* from, const ColorSpace* to, bool extended);

    bool isNothing() const { return !from_; }
    /// In place; the number of colour planes changes to that of the target.
    void apply(const Planes& planes, std::size_t n) const;

  private:
    const color::ColorSpace* from_ = nullptr;
    const color::ColorSpace* to_ = nullptr;
    bool extended_;
};

void premultiply(const Planes& planes, int colors, std::size_t n);
/// Transparent pixels become 0.
void unpremultiply(const Planes& planes, int colors, std::size_t n);

} // namespace cg
