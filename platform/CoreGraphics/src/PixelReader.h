#pragma once

#include "ColorMatch.h"

#include <cg/image.h>

namespace cg {

/// Reads the pixels of an image as colours of a space, without its mask.
class PixelReader {
  public:
    /// A picture has colour and alpha; a shape has only coverage, in the alpha plane: of a mask image what it
    /// lets through, of a gray image its brightness.
    enum class Role { picture, shape };

    /// The image and the space must outlive the reader; a null space means no matching.
    PixelReader(const Image& image, Role role, const ColorSpace* space, bool extended);

    const Image& image() const { return image_; }
    /// Colour planes that read() writes; 0 for coverage.
    int colors() const { return colors_; }
    /// Pixels x to x+n-1 of a row, with alpha as asked for: straight or premultiplied.
    void read(int x, int y, int n, Alpha alpha, const Planes& out) const;

  private:
    const Image& image_;
    ColorMatch match_;
    int colors_;
};

} // namespace cg
