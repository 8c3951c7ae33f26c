// Writing PNG files, with libpng.
#include "encoder.h"

#include "pngstate.h"

#include <bit>
#include <cmath>
#include <exception>

namespace imageio {

namespace {

/// The library's errors jump back to run(). An exception in a callback becomes such an error.
struct Writer : PngState {
    explicit Writer(const OutputImage& image)
        : image(image), row(image.rowBytes()), exif(exifBlock(image.metadata, image.orientation)),
          xmp(xmpPacket(image.metadata)) {}
    ~Writer() { png_destroy_write_struct(&png, &info); }

    static void take(png_structp png, png_bytep data, std::size_t size) {
        auto* self = static_cast<Writer*>(png_get_io_ptr(png));
        if (!self->append(data, size)) fail(png, nullptr);
    }
    bool append(const std::uint8_t* data, std::size_t size) {
        try {
            output.insert(output.end(), data, data + size);
            return true;
        } catch (const std::exception&) {
            return false;
        }
    }
    bool run();

    const OutputImage& image;
    std::vector<std::uint8_t> row, output, exif;
    std::string xmp;
};

bool Writer::run() {
    if (setjmp(escape)) return false;
    png = png_create_write_struct(PNG_LIBPNG_VER_STRING, static_cast<PngState*>(this), fail, ignoreWarning);
    if (!png) return false;
    info = png_create_info_struct(png);
    if (!info) return false;
    png_set_write_fn(png, this, take, [](png_structp) {});
    int type = (image.colors == 3 ? PNG_COLOR_MASK_COLOR : 0) | (image.hasAlpha ? PNG_COLOR_MASK_ALPHA : 0);
    png_set_IHDR(png, info, static_cast<png_uint_32>(image.width), static_cast<png_uint_32>(image.height),
                 image.bits, type, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    // If the library rejects the profile, the picture is written without it.
    png_set_benign_errors(png, 1);
    if (image.isSRGB)
        png_set_sRGB_gAMA_and_cHRM(png, info, PNG_sRGB_INTENT_PERCEPTUAL);
    else if (!image.icc.empty())
        png_set_iCCP(png, info, "ICC Profile", PNG_COMPRESSION_TYPE_BASE, image.icc.data(),
                     static_cast<png_uint_32>(image.icc.size()));
    png_set_pHYs(png, info, static_cast<png_uint_32>(std::lround(image.dpiX / 0.0254)),
                 static_cast<png_uint_32>(std::lround(image.dpiY / 0.0254)), PNG_RESOLUTION_METER);
    if (!exif.empty()) png_set_eXIf_1(png, info, static_cast<png_uint_32>(exif.size()), exif.data());
    if (!xmp.empty()) {
        png_text text = {};
        text.compression = PNG_ITXT_COMPRESSION_NONE;
        text.key = const_cast<char*>(xmpKeyword);
        text.text = xmp.data();
        text.itxt_length = xmp.size();
        png_set_text(png, info, &text, 1);
    }
    png_write_info(png, info);
    if (std::endian::native == std::endian::little && image.bits == 16) png_set_swap(png);
    for (std::size_t y = 0; y < image.height; ++y) {
        image.rows(y, 1, row.data());
        png_write_row(png, row.data());
    }
    png_write_end(png, info);
    return true;
}

} // namespace

std::vector<std::uint8_t> encodePNG(std::span<const OutputImage> images) {
    if (images.size() != 1) return {};
    Writer writer(images[0]);
    return writer.run() ? std::move(writer.output) : std::vector<std::uint8_t>();
}

} // namespace imageio
