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

/// What the tags say about the samples.
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
    /// Whole bytes and a plain colour model; the rest goes through the library's own conversion to RGBA.
    bool isPlain() const {
        bool depth = isFloat() ? bits == 32 : format == SAMPLEFORMAT_UINT && (bits == 8 || bits == 16);
        bool model = photometric == PHOTOMETRIC_RGB || photometric == PHOTOMETRIC_SEPARATED || colors() == 1;
        return depth && model && samples >= colors() + (alpha != Alpha::none);
    }

    TIFF* tiff;
    std::uint32_t width = 0, height = 0;
    std::uint16_t bits = 1, samples = 1, format = SAMPLEFORMAT_UINT, planar = PLANARCONFIG_CONTIG,
                  photometric = 0;
    Alpha alpha = Alpha::none;
};

/// Copies the samples of one strip or tile to their places. With separate planes, `plane` is the sample they
/// are.
void place(const Tags& tags, const Pixels& out, const std::uint8_t* chunk, std::size_t chunkRowBytes,
           std::uint32_t x0, std::uint32_t y0, std::uint32_t width, std::uint32_t height, int plane) {
    auto bytes = static_cast<std::size_t>(out.bits / 8);
    bool separate = tags.planar == PLANARCONFIG_SEPARATE;
    std::size_t stride = separate ? bytes : bytes * tags.samples;
    int wanted = tags.colors() + (tags.alpha != Alpha::none);
    for (std::uint32_t y = 0; y < height; ++y) {
        const std::uint8_t* from = chunk + y * chunkRowBytes;
        std::uint8_t* to = out.row(y0 + y) + x0 * bytes * static_cast<std::size_t>(out.samples);
        for (int s = 0; s < wanted; ++s) {
            if (separate && s != plane) continue;
            const std::uint8_t* p = from + (separate ? 0 : static_cast<std::size_t>(s) * bytes);
            std::uint8_t* q = to + static_cast<std::size_t>(s) * bytes;
            for (std::uint32_t x = 0; x < width;
                 ++x, p += stride, q += bytes * static_cast<std::size_t>(out.samples))
                std::memcpy(q, p, bytes);
        }
    }
}

void readPlain(const Tags& tags, Pixels& out) {
    TIFF* tiff = tags.tiff;
    bool tiled = TIFFIsTiled(tiff);
    tmsize_t chunkSize = tiled ? TIFFTileSize(tiff) : TIFFStripSize(tiff);
    std::uint32_t chunkWidth = tags.width, chunkHeight = tags.height;
    if (tiled) {
        TIFFGetField(tiff, TIFFTAG_TILEWIDTH, &chunkWidth);
        TIFFGetField(tiff, TIFFTAG_TILELENGTH, &chunkHeight);
    } else {
        TIFFGetFieldDefaulted(tiff, TIFFTAG_ROWSPERSTRIP, &chunkHeight);
        chunkHeight = std::min(chunkHeight, tags.height);
    }
    tmsize_t rowBytes = tiled ? TIFFTileRowSize(tiff) : TIFFScanlineSize(tiff);
    if (chunkSize <= 0 || rowBytes <= 0 || !chunkWidth || !chunkHeight || chunkSize > (1 << 30))
        throw Damaged("TIFF layout");
    std::unique_ptr<std::uint8_t[]> chunk(new std::uint8_t[static_cast<std::size_t>(chunkSize)]);
    // Where there is no alpha, the fourth sample is a filler.
    if (tags.alpha == Alpha::none && out.samples == 4) std::memset(out.bytes.get(), 0xFF, out.size);
    int planes = tags.planar == PLANARCONFIG_SEPARATE ? tags.samples : 1;
    for (int plane = 0; plane < planes; ++plane)
        for (std::uint32_t y = 0; y < tags.height; y += chunkHeight)
            for (std::uint32_t x = 0; x < tags.width; x += chunkWidth) {
                std::uint32_t width = std::min(chunkWidth, tags.width - x),
                              height = std::min(chunkHeight, tags.height - y);
                auto sample = static_cast<std::uint16_t>(plane);
                // The last strip is as long as the rows that are left; tiles are always whole.
                tmsize_t needed = tiled ? chunkSize : rowBytes * static_cast<tmsize_t>(height);
                tmsize_t got = tiled ? TIFFReadTile(tiff, chunk.get(), x, y, 0, sample)
                                     : TIFFReadEncodedStrip(tiff, TIFFComputeStrip(tiff, y, sample),
                                                            chunk.get(), needed);
                if (got < needed) throw Damaged("TIFF data");
                place(tags, out, chunk.get(), static_cast<std::size_t>(rowBytes), x, y, width, height, plane);
            }
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

Decoded decode(Bytes bytes, std::size_t index, bool wantsPixels) {
    MemoryFile file(bytes);
    auto tiff = open(file, index);
    Tags tags(tiff.get());
    checkSize(tags.width, tags.height);
    Decoded result;
    Info& info = result.info;
    info.width = tags.width;
    info.height = tags.height;
    info.depth = tags.bits;
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
    if (!wantsPixels) return result;

    Pixels& pixels = result.pixels;
    if (plain) {
        pixels.bits = tags.bits;
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
