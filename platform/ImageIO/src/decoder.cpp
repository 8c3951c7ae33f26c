// Shared by the decoders.
#include "decoder.h"

#include <cstdlib>

namespace imageio {

const Format* formatOf(Bytes file) {
    for (const Format* format : {&jpegFormat, &pngFormat, &tiffFormat, &gifFormat, &webpFormat, &bmpFormat})
        if (format->recognises(file)) return format;
    return nullptr;
}

void checkSize(std::uint64_t width, std::uint64_t height, unsigned bytesPerPixel) {
    // Both sides are at most 2^24, so the product does not wrap around.
    if (width == 0 || height == 0 || width > (1u << 24) || height > (1u << 24) ||
        width * height > memoryLimit / bytesPerPixel)
        throw Damaged("absurd size");
}

void Pixels::allocate(std::size_t width, std::size_t height) {
    auto pixelBytes = static_cast<unsigned>(bits / 8 * samples);
    checkSize(width, height, pixelBytes);
    rowBytes = width * pixelBytes;
    size = rowBytes * height;
    // With calloc, pages that no decoder writes to cost nothing, however large the file claims to be.
    bytes.reset(static_cast<std::uint8_t*>(std::calloc(size, 1)), std::free);
    if (!bytes) throw std::bad_alloc();
}

void setProfile(Info& info, Bytes icc, int components, color::ColorSpacePtr missing) {
    color::ColorSpacePtr embedded = icc.empty() ? nullptr : color::ColorSpace::fromICC(icc);
    if (embedded && embedded->components() == components) {
        info.space = embedded;
        info.profileName = embedded->name();
    } else {
        info.space = std::move(missing);
    }
}

void setFromMetadata(Info& info) {
    double orientation = info.metadata.number("{TIFF}", "Orientation");
    if (orientation >= 1 && orientation <= 8) info.orientation = static_cast<int>(orientation);
    double x = info.metadata.number("{TIFF}", "XResolution"),
           y = info.metadata.number("{TIFF}", "YResolution");
    // The format's own resolution takes precedence. Unit 3 is the centimetre, any other the inch.
    if (info.dpiX == 0 && x > 0 && y > 0) {
        double inch = info.metadata.number("{TIFF}", "ResolutionUnit") == 3 ? 2.54 : 1;
        info.dpiX = x * inch;
        info.dpiY = y * inch;
    }
}

std::size_t one(Bytes) { return 1; }

} // namespace imageio
