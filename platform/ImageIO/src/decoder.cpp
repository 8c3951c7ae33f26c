#include "decoder.h"

#include <libexif/exif-data.h>
#include <libexif/exif-utils.h>

namespace imageio {

const Format* formatOf(Bytes file) {
    for (const Format* format : {&jpegFormat, &pngFormat, &tiffFormat, &gifFormat, &webpFormat, &bmpFormat})
        if (format->recognises(file)) return format;
    return nullptr;
}

void checkSize(std::uint64_t width, std::uint64_t height) {
    // Both below 2^32, so the product does not wrap around.
    if (width == 0 || height == 0 || width > (1u << 24) || height > (1u << 24) || width * height > (1u << 28))
        throw Damaged("absurd size");
}

void Pixels::allocate(std::size_t width, std::size_t height) {
    checkSize(width, height);
    std::uint64_t row = width * static_cast<std::uint64_t>(bits / 8 * samples), all = row * height;
    if (all > SIZE_MAX / 2) throw std::bad_alloc();
    rowBytes = static_cast<std::size_t>(row);
    size = static_cast<std::size_t>(all);
    // Not cleared: every decoder writes all of it, or the image is thrown away.
    bytes.reset(new std::uint8_t[size]);
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

void setExif(Info& info, Bytes exif) {
    static constexpr char mark[] = "Exif\0";
    constexpr std::size_t markSize = sizeof mark;
    if (exif.size() > markSize && std::equal(mark, mark + markSize, exif.begin()))
        exif = exif.subspan(markSize);
    info.exif.assign(exif.begin(), exif.end());

    // The library wants the mark, wherever the block comes from.
    std::vector<unsigned char> block(mark, mark + markSize);
    block.insert(block.end(), exif.begin(), exif.end());
    std::unique_ptr<ExifData, void (*)(ExifData*)> data(
        exif_data_new_from_data(block.data(), static_cast<unsigned>(block.size())), exif_data_unref);
    if (!data) return;
    ExifEntry* entry = exif_content_get_entry(data->ifd[EXIF_IFD_0], EXIF_TAG_ORIENTATION);
    if (!entry || entry->format != EXIF_FORMAT_SHORT || entry->size < 2) return;
    int value = exif_get_short(entry->data, exif_data_get_byte_order(data.get()));
    if (value >= 1 && value <= 8) info.orientation = value;
}

std::size_t one(Bytes) { return 1; }

} // namespace imageio
