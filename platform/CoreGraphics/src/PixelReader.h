// Reading the pixels of an image as colour or as coverage.
#pragma once

#include "ColorMatch.h"

#include <cg/image.h>

namespace cg {

/// Reads the pixels of an image as colours of a space, without its mask.
class PixelReader {
  public:
    /// A picture has colour and alpha; a shape has only coverage, in the alpha plane: what a mask image lets
    /// through, or the brightness of a gray image.
    enum class Role { picture, shape };

    /// The image and the space must outlive the reader; a null space means no matching.
    PixelReader(const Image& image, Role role, const ColorSpace* space, bool extended);

    const Image& image() const { return image_; }
    /// Colour planes that read() writes; 0 for coverage.
    int colors() const { return colors_; }
    /// Reads pixels x to x+n-1 of row y, straight or premultiplied as `alpha` says.
    void read(int x, int y, int n, Alpha alpha, const Planes& out) const;

  private:
    const Image& image_;
    ColorMatch match_;
    int colors_;
};

} // namespace cg
