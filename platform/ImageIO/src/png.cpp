// Reading PNG files, with libpng.
#include "decoder.h"
#include "pngstate.h"

#include <cg/colorspace.h>

#include <bit>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include <malloc.h>

namespace imageio {

namespace {

/// The library's errors jump back to readHeader() or readRows(); nothing on the way has a destructor.
struct Reader : PngState {
    explicit Reader(Bytes file) : rest(file) {}
    ~Reader() { png_destroy_read_struct(&png, &info, nullptr); }

    /// The library's memory is for a few rows, a profile and some text. A chunk of a few bytes can claim 1
    /// GB, or unpack to a thousand times its size.
    static png_voidp allocate(png_structp png, png_alloc_size_t size) {
        auto* self = static_cast<Reader*>(png_get_mem_ptr(png));
        if (size > self->allowance) return nullptr;
        void* memory = std::malloc(size);
        if (memory) self->allowance -= malloc_usable_size(memory);
        return memory;
    }
    static void release(png_structp png, png_voidp memory) {
        if (!memory) return;
        static_cast<Reader*>(png_get_mem_ptr(png))->allowance += malloc_usable_size(memory);
        std::free(memory);
    }

    static void give(png_structp png, png_bytep out, std::size_t size) {
        auto* self = static_cast<Reader*>(png_get_io_ptr(png));
        if (size > self->rest.size()) fail(png, nullptr);
        std::memcpy(out, self->rest.data(), size);
        self->rest = self->rest.subspan(size);
    }

    bool readHeader();
    bool readRows(Pixels& pixels, int passes);

    Bytes rest;
    /// What is left for the library, in bytes.
    std::size_t allowance = 32u << 20;
};

bool Reader::readHeader() {
    if (setjmp(escape)) return false;
    png = png_create_read_struct_2(PNG_LIBPNG_VER_STRING, static_cast<PngState*>(this), fail, ignoreWarning,
                                   this, allocate, release);
    if (!png) return false;
    info = png_create_info_struct(png);
    if (!info) return false;
    png_set_read_fn(png, this, give);
    // A wrong checksum anywhere is damage, even in chunks that could be skipped.
    png_set_crc_action(png, PNG_CRC_ERROR_QUIT, PNG_CRC_ERROR_QUIT);
    png_set_user_limits(png, 1u << 24, 1u << 24);
    png_set_chunk_malloc_max(png, 8u << 20);
    png_read_info(png, info);
    return true;
}

bool Reader::readRows(Pixels& pixels, int passes) {
    if (setjmp(escape)) return false;
    png_uint_32 height = png_get_image_height(png, info);
    allowance += std::size_t(png_get_image_width(png, info)) * 64; // rows, before and after conversion
    for (int pass = 0; pass < passes; ++pass)
        for (png_uint_32 y = 0; y < height; ++y) png_read_row(png, pixels.row(y), nullptr);
    png_read_end(png, nullptr);
    return true;
}

/// The space by the file's gamma and primaries; null if it has none, or they are sRGB's.
color::ColorSpacePtr calibrated(Reader& reader, bool gray) {
    double gamma = 0;
    if (!png_get_gAMA(reader.png, reader.info, &gamma) || !(gamma > 0.01) || !(gamma < 100)) return nullptr;
    double rx, ry, rz, gx, gy, gz, bx, by, bz;
    bool primaries = png_get_cHRM_XYZ(reader.png, reader.info, &rx, &ry, &rz, &gx, &gy, &gz, &bx, &by, &bz);
    bool isSRGBGamma = std::fabs(gamma - 1 / 2.2) < 0.001;
    if (!primaries) {
        if (isSRGBGamma) return nullptr;
        // sRGB's primaries.
        rx = 0.4124, ry = 0.2126, rz = 0.0193, gx = 0.3576, gy = 0.7152, gz = 0.1192, bx = 0.1805,
        by = 0.0722, bz = 0.9505;
    } else if (isSRGBGamma &&
               std::fabs(rx - 0.4124) + std::fabs(gy - 0.7152) + std::fabs(bz - 0.9505) < 0.005) {
        return nullptr;
    }
    double y = ry + gy + by;
    color::ColorSpace::Triple white = {(rx + gx + bx) / y, 1, (rz + gz + bz) / y};
    try {
        if (gray) return color::ColorSpace::calibratedGray(white, {}, 1 / gamma);
        return color::ColorSpace::calibratedRGB(
            white, {}, {1 / gamma, 1 / gamma, 1 / gamma},
            {rx / y, ry / y, rz / y, gx / y, gy / y, gz / y, bx / y, by / y, bz / y});
    } catch (const std::invalid_argument&) {
        return nullptr;
    }
}

void readColors(Reader& reader, Info& info, bool gray) {
    color::ColorSpacePtr plain = gray ? cg::deviceGray() : color::ColorSpace::sRGB();
    png_charp name = nullptr;
    png_bytep icc = nullptr;
    png_uint_32 size = 0;
    int compression = 0, intent = 0;
    if (png_get_iCCP(reader.png, reader.info, &name, &compression, &icc, &size)) {
        setProfile(info, {icc, size}, gray ? 1 : 3, plain);
        return;
    }
    color::ColorSpacePtr own;
    if (!png_get_sRGB(reader.png, reader.info, &intent)) own = calibrated(reader, gray);
    info.space = own ? own : plain;
}

/// Reads the header and chooses the conversions. Errors need a setjmp of their own here.
bool readFields(Reader& reader, Info& info, Pixels& pixels, int& passes) {
    png_structp png = reader.png;
    png_infop in = reader.info;
    int type = png_get_color_type(png, in);
    bool gray = !(type & PNG_COLOR_MASK_COLOR);
    info.width = png_get_image_width(png, in);
    info.height = png_get_image_height(png, in);
    info.depth = png_get_bit_depth(png, in);
    info.isIndexed = type == PNG_COLOR_TYPE_PALETTE;
    info.hasAlpha = (type & PNG_COLOR_MASK_ALPHA) || png_get_valid(png, in, PNG_INFO_tRNS);
    // Pixels need not be square.
    info.dpiX = png_get_x_pixels_per_meter(png, in) * 0.0254;
    info.dpiY = png_get_y_pixels_per_meter(png, in) * 0.0254;
    if (setjmp(reader.escape)) return false;
    // Palettes become colours, few bits become 8, a transparent colour becomes alpha.
    png_set_expand(png);
    if (std::endian::native == std::endian::little && info.depth == 16) png_set_swap(png);
    if (!gray && !info.hasAlpha) png_set_filler(png, info.depth == 16 ? 0xFFFF : 0xFF, PNG_FILLER_AFTER);
    passes = png_set_interlace_handling(png);
    png_read_update_info(png, in);
    pixels.bits = info.depth == 16 ? 16 : 8;
    pixels.samples = gray ? 1 + info.hasAlpha : 4;
    pixels.alpha = info.hasAlpha ? Alpha::straight : Alpha::none;
    return true;
}

void readMetadata(Reader& reader, Info& info) {
    Metadata& metadata = info.metadata;
    auto add = [&](const char* key, MetadataValue value) { metadata.add("{PNG}", key, std::move(value)); };
    add("InterlaceType", long(png_get_interlace_type(reader.png, reader.info)));
    int intent = 0, unit = 0;
    if (png_get_sRGB(reader.png, reader.info, &intent)) add("sRGBIntent", long(intent));
    double gamma = 0;
    if (png_get_gAMA(reader.png, reader.info, &gamma)) add("Gamma", gamma);
    png_uint_32 x = 0, y = 0;
    if (png_get_pHYs(reader.png, reader.info, &x, &y, &unit) && unit == PNG_RESOLUTION_METER) {
        add("XPixelsPerMeter", static_cast<long>(x));
        add("YPixelsPerMeter", static_cast<long>(y));
    }
    static constexpr std::pair<const char*, const char*> keywords[] = {
        {"Title", "Title"},         {"Author", "Author"},     {"Description", "Description"},
        {"Copyright", "Copyright"}, {"Software", "Software"}, {"Creation Time", "CreationTime"},
        {"Comment", "Comment"}};
    png_textp texts = nullptr;
    int count = 0;
    png_get_text(reader.png, reader.info, &texts, &count);
    for (int i = 0; i < count; ++i)
        for (auto [keyword, key] : keywords)
            // A keyword may come in several languages; the first counts.
            if (std::strcmp(texts[i].key, keyword) == 0 && texts[i].text && !metadata.find("{PNG}", key))
                add(key, std::string(texts[i].text));

    png_bytep exif = nullptr;
    png_uint_32 size = 0;
    if (png_get_eXIf_1(reader.png, reader.info, &size, &exif)) addExif(metadata, {exif, size});
    for (int i = 0; i < count; ++i)
        if (std::strcmp(texts[i].key, xmpKeyword) == 0 && texts[i].text)
            addXMP(metadata, {reinterpret_cast<std::uint8_t*>(texts[i].text), std::strlen(texts[i].text)});
    setFromMetadata(info);
}

Decoded decode(Bytes file, std::size_t, bool wantsPixels) {
    Reader reader(file);
    if (!reader.readHeader()) throw Damaged("PNG header");
    Decoded result;
    int passes = 1;
    if (!readFields(reader, result.info, result.pixels, passes)) throw Damaged("PNG header");
    checkSize(result.info.width, result.info.height);
    readColors(reader, result.info, result.pixels.samples < 3);
    if (!wantsPixels) {
        readMetadata(reader, result.info);
        return result;
    }
    result.pixels.allocate(result.info.width, result.info.height);
    if (!reader.readRows(result.pixels, passes)) throw Damaged("PNG data");
    return result;
}

bool recognises(Bytes file) { return file.size() >= 8 && png_sig_cmp(file.data(), 0, 8) == 0; }

} // namespace

const Format pngFormat = {"public.png", recognises, one, decode};

} // namespace imageio
