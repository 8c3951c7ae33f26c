// The EXIF block of JPEG, PNG and WebP, through libexif.
#include "metadata.h"

#include <limits>
#include <memory>

#include <libexif/exif-data.h>
#include <libexif/exif-utils.h>

namespace imageio {

namespace {

/// One component of a field as a number.
double numberAt(const unsigned char* data, ExifFormat format, ExifByteOrder order) {
    auto ratio = [](double numerator, double denominator) {
        return denominator != 0 ? numerator / denominator : std::numeric_limits<double>::infinity();
    };
    switch (format) {
    case EXIF_FORMAT_SBYTE:
        return static_cast<signed char>(*data);
    case EXIF_FORMAT_SHORT:
        return exif_get_short(data, order);
    case EXIF_FORMAT_SSHORT:
        return exif_get_sshort(data, order);
    case EXIF_FORMAT_LONG:
        return exif_get_long(data, order);
    case EXIF_FORMAT_SLONG:
        return exif_get_slong(data, order);
    case EXIF_FORMAT_RATIONAL: {
        ExifRational r = exif_get_rational(data, order);
        return ratio(r.numerator, r.denominator);
    }
    case EXIF_FORMAT_SRATIONAL: {
        ExifSRational r = exif_get_srational(data, order);
        return ratio(r.numerator, r.denominator);
    }
    default:
        return *data;
    }
}

TagField fieldOf(const ExifEntry& entry, ExifByteOrder order) {
    TagField field;
    field.order = order == EXIF_BYTE_ORDER_MOTOROLA ? std::endian::big : std::endian::little;
    bool isBytes = entry.format == EXIF_FORMAT_ASCII || entry.format == EXIF_FORMAT_UNDEFINED ||
                   entry.format == EXIF_FORMAT_BYTE;
    if (isBytes) field.bytes.assign(reinterpret_cast<const char*>(entry.data), entry.size);
    std::size_t step = exif_format_get_size(entry.format);
    if (step == 0 || entry.format == EXIF_FORMAT_ASCII || entry.format == EXIF_FORMAT_FLOAT ||
        entry.format == EXIF_FORMAT_DOUBLE)
        return field;
    // Damaged entries claim more components than they hold.
    for (std::size_t at = 0; at + step <= entry.size && at / step < entry.components; at += step)
        field.numbers.push_back(numberAt(entry.data + at, entry.format, order));
    return field;
}

} // namespace

void addExif(Metadata& metadata, std::span<const std::uint8_t> block) {
    static constexpr char mark[] = "Exif\0";
    constexpr std::size_t markSize = sizeof mark;
    if (block.size() > markSize && std::equal(mark, mark + markSize, block.begin()))
        block = block.subspan(markSize);
    // The library expects the mark; only JPEG has it.
    std::vector<unsigned char> marked(mark, mark + markSize);
    marked.insert(marked.end(), block.begin(), block.end());

    std::unique_ptr<ExifData, void (*)(ExifData*)> data(exif_data_new(), exif_data_unref);
    if (!data) return;
    // The fields as they are in the file: unknown ones are kept, and none are added to satisfy the standard.
    exif_data_unset_option(data.get(), EXIF_DATA_OPTION_IGNORE_UNKNOWN_TAGS);
    exif_data_unset_option(data.get(), EXIF_DATA_OPTION_FOLLOW_SPECIFICATION);
    exif_data_load_data(data.get(), marked.data(), static_cast<unsigned>(marked.size()));

    ExifByteOrder order = exif_data_get_byte_order(data.get());
    const std::pair<TagDirectory, ExifIfd> directories[] = {{TagDirectory::image, EXIF_IFD_0},
                                                            {TagDirectory::exif, EXIF_IFD_EXIF},
                                                            {TagDirectory::gps, EXIF_IFD_GPS}};
    for (auto [directory, ifd] : directories) {
        ExifContent* content = data->ifd[ifd];
        addTags(metadata, directory, [&](std::uint16_t tag) -> std::optional<TagField> {
            const ExifEntry* entry = exif_content_get_entry(content, static_cast<ExifTag>(tag));
            if (!entry || !entry->data) return std::nullopt;
            return fieldOf(*entry, order);
        });
    }
}

} // namespace imageio
