// Writing TIFF files, with libtiff.
#include "encoder.h"

#include "tiffmemory.h"

#include <algorithm>

namespace imageio {

namespace {

bool writePage(TIFF* tiff, const OutputImage& s, std::size_t page, std::size_t pages) {
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(s.width));
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(s.height));
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, s.bits);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, s.colors + s.hasAlpha);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, s.colors == 1 ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_LZW);
    TIFFSetField(tiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, s.orientation);
    TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
    TIFFSetField(tiff, TIFFTAG_XRESOLUTION, s.dpiX);
    TIFFSetField(tiff, TIFFTAG_YRESOLUTION, s.dpiY);
    // The texts have the numbers of EXIF's tags; its own directories are not written.
    for (auto [tag, key] : {std::pair(TIFFTAG_DOCUMENTNAME, "DocumentName"),
                            {TIFFTAG_IMAGEDESCRIPTION, "ImageDescription"},
                            {TIFFTAG_MAKE, "Make"},
                            {TIFFTAG_MODEL, "Model"},
                            {TIFFTAG_SOFTWARE, "Software"},
                            {TIFFTAG_DATETIME, "DateTime"},
                            {TIFFTAG_ARTIST, "Artist"},
                            {TIFFTAG_HOSTCOMPUTER, "HostComputer"},
                            {TIFFTAG_COPYRIGHT, "Copyright"}}) {
        const MetadataValue* value = s.metadata.find("{TIFF}", key);
        if (auto* text = value ? std::get_if<std::string>(value) : nullptr)
            TIFFSetField(tiff, tag, text->c_str());
    }
    if (std::string xmp = xmpPacket(s.metadata); !xmp.empty())
        TIFFSetField(tiff, TIFFTAG_XMLPACKET, static_cast<std::uint32_t>(xmp.size()), xmp.data());
    if (std::vector<std::uint8_t> iptc = iptcRecord(s.metadata); !iptc.empty())
        TIFFSetField(tiff, TIFFTAG_RICHTIFFIPTC, static_cast<std::uint32_t>(iptc.size()), iptc.data());
    if (s.hasAlpha) {
        std::uint16_t kind = EXTRASAMPLE_UNASSALPHA;
        TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &kind);
    }
    if (!s.icc.empty())
        TIFFSetField(tiff, TIFFTAG_ICCPROFILE, static_cast<std::uint32_t>(s.icc.size()), s.icc.data());
    if (pages > 1) {
        TIFFSetField(tiff, TIFFTAG_SUBFILETYPE, FILETYPE_PAGE);
        TIFFSetField(tiff, TIFFTAG_PAGENUMBER, static_cast<int>(page), static_cast<int>(pages));
    }
    // Strips of about 64 KB.
    auto rows = std::clamp<std::size_t>(65536 / std::max<std::size_t>(s.rowBytes(), 1), 1, s.height);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, static_cast<std::uint32_t>(rows));
    std::vector<std::uint8_t> strip(s.rowBytes() * rows);
    for (std::size_t y = 0, index = 0; y < s.height; y += rows, ++index) {
        std::size_t count = std::min(rows, s.height - y);
        s.rows(y, count, strip.data());
        if (TIFFWriteEncodedStrip(tiff, static_cast<std::uint32_t>(index), strip.data(),
                                  static_cast<tmsize_t>(count * s.rowBytes())) < 0)
            return false;
    }
    return TIFFWriteDirectory(tiff);
}

} // namespace

std::vector<std::uint8_t> encodeTIFF(std::span<const OutputImage> images) {
    if (images.empty()) return {};
    std::vector<std::uint8_t> output;
    MemoryFile file(output);
    std::unique_ptr<TIFF, void (*)(TIFF*)> tiff(openTiff(file, "w"), [](TIFF* t) {
        if (t) TIFFClose(t);
    });
    if (!tiff) return {};
    for (std::size_t i = 0; i < images.size(); ++i)
        if (!writePage(tiff.get(), images[i], i, images.size())) return {};
    tiff.reset();
    return file.failed ? std::vector<std::uint8_t>() : std::move(output);
}

} // namespace imageio
