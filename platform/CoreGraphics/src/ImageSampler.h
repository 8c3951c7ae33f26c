// Reading an image under a transform.
#pragma once

#include "PixelReader.h"

#include <cg/geometry.h>

namespace cg {

/// From pixels of one image to those of another that covers the same area.
Matrix stretch(const Image& from, const Image& to);

/// Reads an image at transformed positions, as premultiplied colour in a space. It works through the
/// destination area by area: prepare() fetches the pixels that an area needs, averaged where many fall onto
/// one, so that memory grows with the area and not with the image.
class ImageSampler {
  public:
    using Role = PixelReader::Role;
    enum class Quality { nearest, smooth };

    /// `toImage` takes destination pixels to pixels of the image, both counted from the top. The image must
    /// outlive the sampler; so must `space`, which may be null for no matching.
    ImageSampler(const Image& image, Role role, const ColorSpace* space, bool extended, const Matrix& toImage,
                 Quality quality);

    /// Fetches what the destination's `area` needs.
    void prepare(const IntRect& area);
    /// Pixels x to x+n-1 of row y, inside the prepared area. Beyond the image its edge pixels repeat.
    void row(int x, int y, std::size_t n, const Planes& out) const;
    /// Colour planes that row() writes.
    int colors() const { return reader_.colors(); }

  private:
    void fetch(const IntRect& cells);
    void sampleRow(int x, int y, std::size_t n, const Planes& out) const;

    PixelReader reader_;
    Matrix toCells_;
    Quality quality_;
    /// Pixels that are averaged to one cell.
    int shrinkX_ = 1, shrinkY_ = 1;
    IntRect cells_;
    PlaneBuffer window_;
    PlaneBuffer source_;
    std::unique_ptr<ImageSampler> mask_;
    PlaneBuffer maskRow_;
};

} // namespace cg
