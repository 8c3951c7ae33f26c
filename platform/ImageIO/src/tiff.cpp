// Reading TIFF files, with libtiff.
#include "decoder.h"

#include <cg/colorspace.h>

#include "tiffmemory.h"

#include <cstring>

namespace imageio {

namespace {

std::unique_ptr<TIFF, void (*)(TIFF*)> open(MemoryFile& file, std::size_t index) {
    std::unique_ptr<TIFF, void (*)(TIFF*)> tiff(openTiff(file, "r"), [](TIFF* t) {
        if (t) TIFFClose(t);
    });
    if (!tiff || !TIFFSetDirectory(tiff.get(), static_cast<tdir_t>(index))) throw Damaged("TIFF directory");
    return tiff;
}

/// The tags that describe the samples.
struct Tags {
    explicit Tags(TIFF* tiff) : tiff(tiff) {
        TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &width);
        TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &height);
        TIFFGetFieldDefaulted(tiff, TIFFTAG_BITSPERSAMPLE, &bits);
        TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &samples);
        TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLEFORMAT, &format);
        TIFFGetFieldDefaulted(tiff, TIFFTAG_PLANARCONFIG, &planar);
        if (!TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &photometric)) photometric = PHOTOMETRIC_MINISBLACK;
        std::uint16_t extras = 0;
        std::uint16_t* kinds = nullptr;
        TIFFGetFieldDefaulted(tiff, TIFFTAG_EXTRASAMPLES, &extras, &kinds);
        if (extras > 0 && kinds[0] == EXTRASAMPLE_ASSOCALPHA) alpha = Alpha::premultiplied;
        if (extras > 0 && kinds[0] == EXTRASAMPLE_UNASSALPHA) alpha = Alpha::straight;
    }

    int colors() const {
        switch (photometric) {
        case PHOTOMETRIC_MINISWHITE:
        case PHOTOMETRIC_MINISBLACK:
            return 1;
        case PHOTOMETRIC_SEPARATED:
            return 4;
        default:
            return 3;
        }
    }
    bool isFloat() const { return format == SAMPLEFORMAT_IEEEFP; }
    /// Of a sample in memory: doubles become floats.
    int decodedBits() const { return bits == 64 ? 32 : bits; }
    /// Whole bytes in a plain colour model. Anything else goes through the library's own conversion to RGBA.
    bool isPlain() const {
        bool depth =
            isFloat() ? bits == 32 || bits == 64 : format == SAMPLEFORMAT_UINT && (bits == 8 || bits == 16);
        bool model = photometric == PHOTOMETRIC_RGB || photometric == PHOTOMETRIC_SEPARATED || colors() == 1;
        return depth && model && samples >= colors() + (alpha != Alpha::none);
    }

    TIFF* tiff;
    std::uint32_t width = 0, height = 0;
    std::uint16_t bits = 1, samples = 1, format = SAMPLEFORMAT_UINT, planar = PLANARCONFIG_CONTIG,
                  photometric = 0;
    Alpha alpha = Alpha::none;
};

/// Copies the samples of one strip or tile to their places. With separate planes, they are sample `plane` of
/// each pixel.
void place(const Tags& tags, const Pixels& out, const std::uint8_t* chunk, std::size_t chunkRowBytes,
           std::uint32_t x0, std::uint32_t y0, std::uint32_t width, std::uint32_t height, int plane) {
    auto bytes = static_cast<std::size_t>(out.bits / 8), fileBytes = static_cast<std::size_t>(tags.bits / 8);
    bool separate = tags.planar == PLANARCONFIG_SEPARATE;
    std::size_t stride = separate ? fileBytes : fileBytes * tags.samples;
    int wanted = tags.colors() + (tags.alpha != Alpha::none);
    for (std::uint32_t y = 0; y < height; ++y) {
        const std::uint8_t* from = chunk + y * chunkRowBytes;
        std::uint8_t* to = out.row(y0 + y) + x0 * bytes * static_cast<std::size_t>(out.samples);
        for (int s = 0; s < wanted; ++s) {
            if (separate && s != plane) continue;
            const std::uint8_t* p = from + (separate ? 0 : static_cast<std::size_t>(s) * fileBytes);
            std::uint8_t* q = to + static_cast<std::size_t>(s) * bytes;
            for (std::uint32_t x = 0; x < width;
                 ++x, p += stride, q += bytes * static_cast<std::size_t>(out.samples)) {
                if (fileBytes == bytes) {
                    std::memcpy(q, p, bytes);
                    continue;
                }
                double wide;
                std::memcpy(&wide, p, sizeof wide);
                auto narrow = static_cast<float>(wide);
                std::memcpy(q, &narrow, sizeof narrow);
            }
        }
    }
}

/// Reads tiles, the last of which may reach beyond the picture.
void readTiles(const Tags& tags, Pixels& out, int planes) {
    TIFF* tiff = tags.tiff;
    std::uint32_t tileWidth = 0, tileHeight = 0;
    TIFFGetField(tiff, TIFFTAG_TILEWIDTH, &tileWidth);
    TIFFGetField(tiff, TIFFTAG_TILELENGTH, &tileHeight);
    tmsize_t size = TIFFTileSize(tiff), rowBytes = TIFFTileRowSize(tiff);
    // No sensible tile is larger.
    if (size <= 0 || rowBytes <= 0 || !tileWidth || !tileHeight || size > (64 << 20))
        throw Damaged("TIFF layout");
    std::vector<std::uint8_t> tile(static_cast<std::size_t>(size));
    for (int plane = 0; plane < planes; ++plane)
        for (std::uint32_t y = 0; y < tags.height; y += tileHeight)
            for (std::uint32_t x = 0; x < tags.width; x += tileWidth) {
                if (TIFFReadTile(tiff, tile.data(), x, y, 0, static_cast<std::uint16_t>(plane)) < size)
                    throw Damaged("TIFF data");
                place(tags, out, tile.data(), static_cast<std::size_t>(rowBytes), x, y,
                      std::min(tileWidth, tags.width - x), std::min(tileHeight, tags.height - y), plane);
            }
}

/// Reads strips, row by row: a strip may be as large as the picture.
void readStrips(const Tags& tags, Pixels& out, int planes) {
    tmsize_t rowBytes = TIFFScanlineSize(tags.tiff);
    if (rowBytes <= 0 || rowBytes > (64 << 20)) throw Damaged("TIFF layout");
    std::vector<std::uint8_t> row(static_cast<std::size_t>(rowBytes));
    for (int plane = 0; plane < planes; ++plane)
        for (std::uint32_t y = 0; y < tags.height; ++y) {
            if (TIFFReadScanline(tags.tiff, row.data(), y, static_cast<std::uint16_t>(plane)) < 0)
                throw Damaged("TIFF data");
            place(tags, out, row.data(), row.size(), 0, y, tags.width, 1, plane);
        }
}

void readPlain(const Tags& tags, Pixels& out) {
    // Without alpha the fourth sample is a filler.
    if (tags.alpha == Alpha::none && out.samples == 4) std::memset(out.bytes.get(), 0xFF, out.size);
    int planes = 1;
    // Planes beyond colours and alpha are ignored.
    if (tags.planar == PLANARCONFIG_SEPARATE) planes = tags.colors() + (tags.alpha != Alpha::none);
    if (TIFFIsTiled(tags.tiff))
        readTiles(tags, out, planes);
    else
        readStrips(tags, out, planes);
    if (tags.photometric == PHOTOMETRIC_MINISWHITE && out.bits < 32)
        for (std::uint32_t y = 0; y < tags.height; ++y)
            for (std::size_t i = 0; i < out.rowBytes; ++i)
                if (i / static_cast<std::size_t>(out.bits / 8) % static_cast<std::size_t>(out.samples) == 0)
                    out.row(y)[i] ^= 0xFF;
}

void readThroughRGBA(const Tags& tags, Pixels& out) {
    // The library packs a pixel into a word, R in the lowest byte.
    auto* words = reinterpret_cast<std::uint32_t*>(out.bytes.get());
    if (!TIFFReadRGBAImageOriented(tags.tiff, tags.width, tags.height, words, ORIENTATION_TOPLEFT, 1))
        throw Damaged("TIFF data");
}

/// A field of the current directory, whatever type the library keeps it in.
std::optional<TagField> fieldOf(TIFF* tiff, std::uint16_t tag) {
    const TIFFField* kind = TIFFFieldWithTag(tiff, tag);
    if (!kind) return std::nullopt;
    TagField result;
    TIFFDataType type = TIFFFieldDataType(kind);
    int size = TIFFFieldSetGetSize(kind), count = TIFFFieldReadCount(kind);
    const void* data = nullptr;
    std::uint32_t n = count > 0 ? static_cast<std::uint32_t>(count) : 0;
    std::uint64_t scalar = 0;
    if (TIFFFieldPassCount(kind)) {
        std::uint16_t shortCount = 0;
        bool isShort = TIFFFieldSetGetCountSize(kind) == 2;
        if (!(isShort ? TIFFGetField(tiff, tag, &shortCount, &data) : TIFFGetField(tiff, tag, &n, &data)))
            return std::nullopt;
        if (isShort) n = shortCount;
    } else if (type == TIFF_ASCII || count != 1) {
        if (!TIFFGetField(tiff, tag, &data)) return std::nullopt;
        if (data && type == TIFF_ASCII)
            n = static_cast<std::uint32_t>(std::strlen(static_cast<const char*>(data)));
    } else {
        if (!TIFFGetField(tiff, tag, &scalar)) return std::nullopt;
        data = &scalar;
    }
    if (!data) return std::nullopt;
    const auto* bytes = static_cast<const char*>(data);
    if (size <= 1 || type == TIFF_ASCII) result.bytes.assign(bytes, n);
    if (type == TIFF_ASCII) return result;
    for (std::uint32_t i = 0; i < n; ++i) {
        auto as = [&]<class T>(T value) {
            std::memcpy(&value, bytes + i * sizeof value, sizeof value);
            return static_cast<double>(value);
        };
        bool isReal =
            type == TIFF_RATIONAL || type == TIFF_SRATIONAL || type == TIFF_FLOAT || type == TIFF_DOUBLE;
        bool isSigned = type == TIFF_SBYTE || type == TIFF_SSHORT || type == TIFF_SLONG;
        result.numbers.push_back(isReal      ? size == 8 ? as(double()) : as(float())
                                      : size == 1 ? isSigned ? as(std::int8_t()) : as(std::uint8_t())
                                      : size == 2 ? isSigned ? as(std::int16_t()) : as(std::uint16_t())
                                      : size == 4 ? isSigned ? as(std::int32_t()) : as(std::uint32_t())
                                                  : as(std::uint64_t()));
    }
    return result;
}

/// The bytes of a field as they lie in the file: the library takes those of IPTC for words, whose order it
/// may change. Empty for BigTIFF, for which the field is not used.
Bytes rawField(TIFF* tiff, Bytes file, std::uint16_t tag) {
    if (TIFFIsBigTIFF(tiff)) return {};
    auto number = [&](std::uint64_t at, unsigned size) -> std::uint64_t {
        std::uint64_t value = 0;
        for (unsigned i = 0; i < size; ++i) {
            if (at + i >= file.size()) return 0;
            value |= std::uint64_t(file[at + i]) << 8 * (TIFFIsBigEndian(tiff) ? size - 1 - i : i);
        }
        return value;
    };
    std::uint64_t directory = TIFFCurrentDirOffset(tiff), count = number(directory, 2);
    for (std::uint64_t entry = directory + 2; count > 0; --count, entry += 12) {
        if (number(entry, 2) != tag) continue;
        std::uint64_t size = number(entry + 4, 4) * (number(entry + 2, 2) == TIFF_LONG ? 4 : 1);
        std::uint64_t at = size > 4 ? number(entry + 8, 4) : entry + 8;
        if (at <= file.size() && size <= file.size() - at)
            return file.subspan(static_cast<std::size_t>(at), static_cast<std::size_t>(size));
    }
    return {};
}

/// Leaves the current directory, so it must come last.
void readMetadata(TIFF* tiff, Bytes file, Metadata& metadata) {
    Bytes iptc = rawField(tiff, file, TIFFTAG_RICHTIFFIPTC);
    std::uint32_t xmpSize = 0;
    void* packet = nullptr;
    std::vector<std::uint8_t> xmp; // the library's memory goes with the directory
    if (TIFFGetField(tiff, TIFFTAG_XMLPACKET, &xmpSize, &packet)) {
        auto* bytes = static_cast<std::uint8_t*>(packet);
        xmp.assign(bytes, bytes + xmpSize);
    }
    auto fields = [&](std::uint16_t tag) { return fieldOf(tiff, tag); };
    toff_t exif = 0, gps = 0;
    bool hasExif = TIFFGetField(tiff, TIFFTAG_EXIFIFD, &exif),
         hasGPS = TIFFGetField(tiff, TIFFTAG_GPSIFD, &gps);
    addTags(metadata, TagDirectory::image, fields);
    if (hasExif && TIFFReadEXIFDirectory(tiff, exif)) addTags(metadata, TagDirectory::exif, fields);
    if (hasGPS && TIFFReadGPSDirectory(tiff, gps)) addTags(metadata, TagDirectory::gps, fields);
    addIPTC(metadata, iptc);
    addXMP(metadata, xmp);
}

Decoded decode(Bytes bytes, std::size_t index, bool wantsPixels) {
    MemoryFile file(bytes);
    auto tiff = open(file, index);
    Tags tags(tiff.get());
    checkSize(tags.width, tags.height);
    Decoded result;
    Info& info = result.info;
    info.width = tags.width;
    info.height = tags.height;
    info.depth = tags.isFloat() ? tags.decodedBits() : tags.bits;
    info.isFloat = tags.isFloat();
    info.isIndexed = tags.photometric == PHOTOMETRIC_PALETTE;
    info.hasAlpha = tags.alpha != Alpha::none;

    bool plain = tags.isPlain();
    int colors = plain ? tags.colors() : 3;
    std::uint32_t iccSize = 0;
    void* icc = nullptr;
    if (!TIFFGetField(tiff.get(), TIFFTAG_ICCPROFILE, &iccSize, &icc)) iccSize = 0;
    setProfile(info, {static_cast<std::uint8_t*>(icc), iccSize}, colors,
               colors == 1   ? cg::deviceGray()
               : colors == 3 ? color::ColorSpace::sRGB()
                             : color::ColorSpace::deviceCMYK());
    float x = 0, y = 0;
    std::uint16_t unit = RESUNIT_INCH, orientation = 0;
    TIFFGetFieldDefaulted(tiff.get(), TIFFTAG_RESOLUTIONUNIT, &unit);
    if (TIFFGetField(tiff.get(), TIFFTAG_XRESOLUTION, &x) &&
        TIFFGetField(tiff.get(), TIFFTAG_YRESOLUTION, &y) && unit != RESUNIT_NONE) {
        double inch = unit == RESUNIT_CENTIMETER ? 2.54 : 1;
        info.dpiX = x * inch;
        info.dpiY = y * inch;
    }
    if (TIFFGetField(tiff.get(), TIFFTAG_ORIENTATION, &orientation) && orientation >= 1 && orientation <= 8)
        info.orientation = orientation;
    if (!wantsPixels) {
        readMetadata(tiff.get(), bytes, info.metadata);
        return result;
    }

    Pixels& pixels = result.pixels;
    if (plain) {
        pixels.bits = tags.decodedBits();
        pixels.alpha = tags.alpha;
        pixels.samples = colors == 3 ? 4 : colors + info.hasAlpha;
    } else {
        pixels.alpha = info.hasAlpha ? Alpha::premultiplied : Alpha::none;
    }
    pixels.allocate(info.width, info.height);
    if (plain)
        readPlain(tags, pixels);
    else
        readThroughRGBA(tags, pixels);
    return result;
}

std::size_t count(Bytes bytes) {
    MemoryFile file(bytes);
    auto tiff = open(file, 0);
    return TIFFNumberOfDirectories(tiff.get());
}

bool recognises(Bytes file) {
    if (file.size() < 8) return false;
    return std::memcmp(file.data(), "II*\0", 4) == 0 || std::memcmp(file.data(), "MM\0*", 4) == 0 ||
           std::memcmp(file.data(), "II+\0", 4) == 0 || std::memcmp(file.data(), "MM\0+", 4) == 0;
}

} // namespace

const Format tiffFormat = {"public.tiff", recognises, count, decode};

} // namespace imageio
