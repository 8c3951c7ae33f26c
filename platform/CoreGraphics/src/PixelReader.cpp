// Reading the pixels of an image as colour or as coverage.
#include "PixelReader.h"

#include <algorithm>

namespace cg {

PixelReader::PixelReader(const Image& image, Role role, const ColorSpace* space, bool extended)
    : image_(image), match_(get<ColorSpace>(image.space()), space, extended) {
    bool coverage = role == Role::shape || image.isMask() || image.format().colors == 0;
    colors_ = coverage ? 0 : space ? space->components() : image.format().colors;
}

void PixelReader::read(int x, int y, int n, Alpha alpha, const Planes& out) const {
    auto count = static_cast<std::size_t>(n);
    const PixelFormat& format = image_.format();
    format.unpack(image_.row(static_cast<std::size_t>(y)), static_cast<std::size_t>(x), count, out);
    if (!colors_) {
        // One component that means coverage; a mask hides where it is full.
        if (image_.isMask())
            for (std::size_t i = 0; i < count; ++i) out[alphaPlane][i] = 1 - out[0][i];
        else if (format.colors)
            std::copy_n(out[0], count, out[alphaPlane]);
        return;
    }
    if (!format.hasAlpha()) return match_.apply(out, count);
    // Colours are matched straight.
    if (format.alpha == alpha && match_.isNothing()) return;
    if (format.alpha == Alpha::premultiplied) unpremultiply(out, format.colors, count);
    match_.apply(out, count);
    if (alpha == Alpha::premultiplied) premultiply(out, colors_, count);
}

} // namespace cg
