// Image files made with the format libraries.
#include "files.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <gif_lib.h>
#include <jpeglib.h>
#include <png.h>
#include <webp/encode.h>

Bytes testPixels(int width, int height, int samples) {
    Bytes pixels;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const int values[] = {x * 255 / width, y * 255 / height, (x / 8 + y / 8) % 2 ? 200 : 50,
                                  255 - y * 200 / height};
            for (int s = 0; s < samples; ++s) pixels.push_back(static_cast<std::uint8_t>(values[s]));
        }
    return pixels;
}

Bytes jpegFile(int width, int height, int components, bool adobeMarker) {
    jpeg_compress_struct info = {};
    jpeg_error_mgr errors;
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* data = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &data, &size);
    info.image_width = static_cast<JDIMENSION>(width);
    info.image_height = static_cast<JDIMENSION>(height);
    info.input_components = components;
    info.in_color_space = components == 1 ? JCS_GRAYSCALE : components == 3 ? JCS_RGB : JCS_CMYK;
    jpeg_set_defaults(&info);
    if (components == 4) info.write_Adobe_marker = adobeMarker;
    jpeg_set_quality(&info, 95, TRUE);
    jpeg_start_compress(&info, TRUE);
    Bytes pixels = testPixels(width, height, components);
    while (info.next_scanline < info.image_height) {
        JSAMPROW row = pixels.data() + info.next_scanline * static_cast<unsigned>(width * components);
        jpeg_write_scanlines(&info, &row, 1);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    Bytes file(data, data + size);
    std::free(data);
    return file;
}

Bytes pngFile(int width, int height, int colorType, const PngOptions& options) {
    Bytes file;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(
        png, &file,
        [](png_structp p, png_bytep data, std::size_t size) {
            auto* out = static_cast<Bytes*>(png_get_io_ptr(p));
            out->insert(out->end(), data, data + size);
        },
        nullptr);
    png_set_IHDR(png, info, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height), options.bits,
                 colorType, options.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    if (options.gamma > 0) png_set_gAMA(png, info, options.gamma);
    Bytes exif = options.exif;
    if (!exif.empty()) png_set_eXIf_1(png, info, static_cast<png_uint_32>(exif.size()), exif.data());
    const png_color palette[] = {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}, {255, 255, 255}};
    if (colorType == PNG_COLOR_TYPE_PALETTE) png_set_PLTE(png, info, palette, 4);
    png_write_info(png, info);
    int samples = colorType == PNG_COLOR_TYPE_GRAY         ? 1
                  : colorType == PNG_COLOR_TYPE_GRAY_ALPHA ? 2
                  : colorType == PNG_COLOR_TYPE_RGB        ? 3
                  : colorType == PNG_COLOR_TYPE_RGB_ALPHA  ? 4
                                                           : 1;
    Bytes pixels = testPixels(width, height, samples);
    if (colorType == PNG_COLOR_TYPE_PALETTE)
        for (std::size_t i = 0; i < pixels.size(); ++i) pixels[i] = i % 4;
    // 16-bit words, with the 8-bit value in both bytes.
    if (options.bits == 16) {
        Bytes wide;
        for (std::uint8_t p : pixels) wide.insert(wide.end(), 2, p);
        pixels = wide;
    }
    if (options.bits < 8) png_set_packing(png);
    std::vector<png_bytep> rows;
    std::size_t rowBytes = pixels.size() / static_cast<std::size_t>(height);
    for (int y = 0; y < height; ++y) rows.push_back(pixels.data() + static_cast<std::size_t>(y) * rowBytes);
    png_write_image(png, rows.data());
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return file;
}

Bytes gifFile() {
    Bytes file;
    int error = 0;
    GifFileType* gif = EGifOpen(
        &file,
        [](GifFileType* g, const GifByteType* data, int size) {
            auto* out = static_cast<Bytes*>(g->UserData);
            out->insert(out->end(), data, data + size);
            return size;
        },
        &error);
    GifColorType colors[4] = {{0, 0, 0}, {255, 0, 0}, {0, 255, 0}, {0, 0, 255}};
    ColorMapObject* map = GifMakeMapObject(4, colors);
    EGifSetGifVersion(gif, true);
    EGifPutScreenDesc(gif, 6, 6, 2, 0, map);
    auto frame = [&](int left, int size, GifByteType color) {
        GraphicsControlBlock block = {
            .DisposalMode = DISPOSE_DO_NOT, .UserInputFlag = false, .DelayTime = 10, .TransparentColor = 0};
        GifByteType bytes[4];
        EGifGCBToExtension(&block, bytes);
        EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, 4, bytes);
        EGifPutImageDesc(gif, left, left, size, size, false, nullptr);
        std::vector<GifPixelType> line(static_cast<std::size_t>(size), color);
        for (int y = 0; y < size; ++y) EGifPutLine(gif, line.data(), size);
    };
    frame(1, 4, 1);
    frame(2, 2, 2);
    GifFreeMapObject(map);
    EGifCloseFile(gif, &error);
    return file;
}

Bytes webpFile(int width, int height, bool alpha) {
    Bytes pixels = testPixels(width, height, alpha ? 4 : 3);
    std::uint8_t* data = nullptr;
    std::size_t size = alpha ? WebPEncodeLosslessRGBA(pixels.data(), width, height, width * 4, &data)
                             : WebPEncodeLosslessRGB(pixels.data(), width, height, width * 3, &data);
    Bytes file(data, data + size);
    WebPFree(data);
    return file;
}

Bytes bmpFile24() {
    Bytes file(54);
    auto put = [&](std::size_t at, std::uint32_t value) { std::memcpy(&file[at], &value, 4); };
    file[0] = 'B';
    file[1] = 'M';
    put(10, 54);
    put(14, 40);
    put(18, 3);
    put(22, 2);
    file[26] = 1;
    file[28] = 24;
    put(38, 3937); // 100 dots per inch
    put(42, 3937);
    const std::uint8_t rows[2][12] = {{255, 255, 255, 0, 0, 0, 128, 128, 128},
                                      {0, 0, 255, 0, 255, 0, 255, 0, 0}};
    for (auto& row : rows) file.insert(file.end(), row, row + 12);
    put(2, static_cast<std::uint32_t>(file.size()));
    return file;
}

cg::Retained<CGImageSourceRef> source(const Bytes& file) {
    auto data =
        cg::Retained<CFDataRef>::adopt(CFDataCreate(nullptr, file.data(), static_cast<CFIndex>(file.size())));
    return cg::Retained<CGImageSourceRef>::adopt(CGImageSourceCreateWithData(data.get(), nullptr));
}

cg::Retained<CGImageRef> decode(const Bytes& file, std::size_t index) {
    auto from = source(file);
    return cg::Retained<CGImageRef>::adopt(CGImageSourceCreateImageAtIndex(from.get(), index, nullptr));
}

Drawn::Drawn(CGImageRef image) : bitmap_(CGImageGetWidth(image), CGImageGetHeight(image)) {
    auto width = CGFloat(CGImageGetWidth(image)), height = CGFloat(CGImageGetHeight(image));
    CGContextDrawImage(bitmap_.get(), CGRectMake(0, 0, width, height), image);
}

double number(const cg::Retained<CFDictionaryRef>& properties, CFStringRef key) {
    double value = -1;
    const void* object = properties ? CFDictionaryGetValue(properties.get(), key) : nullptr;
    if (object) CFNumberGetValue(static_cast<CFNumberRef>(object), kCFNumberDoubleType, &value);
    return value;
}

Bytes encode(const std::vector<CGImageRef>& images, const char* type, CFDictionaryRef properties) {
    auto name =
        cg::Retained<CFStringRef>::adopt(CFStringCreateWithCString(nullptr, type, kCFStringEncodingUTF8));
    auto data = cg::Retained<CFMutableDataRef>::adopt(CFDataCreateMutable(nullptr, 0));
    auto destination = cg::Retained<CGImageDestinationRef>::adopt(
        CGImageDestinationCreateWithData(data.get(), name.get(), images.size(), nullptr));
    for (CGImageRef image : images) CGImageDestinationAddImage(destination.get(), image, properties);
    if (!CGImageDestinationFinalize(destination.get())) return {};
    return Bytes(CFDataGetBytePtr(data.get()), CFDataGetBytePtr(data.get()) + CFDataGetLength(data.get()));
}
