// Writing JPEG files, with libjpeg.
#include "encoder.h"

#include <algorithm>
#include <cmath>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>

#include <jpeglib.h>

namespace imageio {

namespace {

/// The library's errors jump back to run().
struct Writer {
    explicit Writer(const OutputImage& image) : image(image), row(image.rowBytes()) {
        addMarker(1, "Exif\0", exifBlock(image.metadata, image.orientation));
        addMarker(1, "http://ns.adobe.com/xap/1.0/", xmpPacket(image.metadata));
        addMarker(13, "Photoshop 3.0", photoshopResources(image.metadata));
        info.err = jpeg_std_error(&errors);
        info.client_data = this;
        errors.error_exit = [](j_common_ptr c) {
            std::longjmp(static_cast<Writer*>(c->client_data)->escape, 1);
        };
        errors.output_message = [](j_common_ptr) {};
    }
    ~Writer() {
        if (created) jpeg_destroy_compress(&info);
        std::free(data);
    }
    /// The name ends with its zero. A marker has 64 KB; metadata that do not fit are left out.
    template <std::size_t size>
    void addMarker(int number, const char (&name)[size], const auto& contents) {
        if (contents.empty() || size + contents.size() > 65533) return;
        std::vector<std::uint8_t> bytes(name, name + size);
        bytes.insert(bytes.end(), contents.begin(), contents.end());
        markers.emplace_back(JPEG_APP0 + number, std::move(bytes));
    }
    bool run();

    const OutputImage& image;
    std::vector<std::uint8_t> row;
    std::vector<std::pair<int, std::vector<std::uint8_t>>> markers;
    jpeg_compress_struct info = {};
    jpeg_error_mgr errors = {};
    std::jmp_buf escape;
    bool created = false;
    unsigned char* data = nullptr;
    unsigned long size = 0;
};

bool Writer::run() {
    if (setjmp(escape)) return false;
    jpeg_create_compress(&info);
    created = true;
    jpeg_mem_dest(&info, &data, &size);
    info.image_width = static_cast<JDIMENSION>(image.width);
    info.image_height = static_cast<JDIMENSION>(image.height);
    info.input_components = image.colors;
    info.in_color_space = image.colors == 1 ? JCS_GRAYSCALE : JCS_RGB;
    jpeg_set_defaults(&info);
    auto quality = static_cast<int>(std::lround(std::clamp(image.quality, 0., 1.) * 100));
    jpeg_set_quality(&info, quality, TRUE);
    // At high quality, colours keep their full resolution.
    if (quality >= 90 && image.colors == 3)
        info.comp_info[0].h_samp_factor = info.comp_info[0].v_samp_factor = 1;
    info.density_unit = 1;
    info.X_density = static_cast<UINT16>(std::clamp(std::lround(image.dpiX), 1l, 65535l));
    info.Y_density = static_cast<UINT16>(std::clamp(std::lround(image.dpiY), 1l, 65535l));
    jpeg_start_compress(&info, TRUE);
    for (const auto& [number, bytes] : markers)
        jpeg_write_marker(&info, number, bytes.data(), static_cast<unsigned>(bytes.size()));
    if (!image.icc.empty())
        jpeg_write_icc_profile(&info, image.icc.data(), static_cast<unsigned>(image.icc.size()));
    for (std::size_t y = 0; y < image.height; ++y) {
        image.rows(y, 1, row.data());
        JSAMPROW line = row.data();
        jpeg_write_scanlines(&info, &line, 1);
    }
    jpeg_finish_compress(&info);
    return true;
}

} // namespace

std::vector<std::uint8_t> encodeJPEG(std::span<const OutputImage> images) {
    if (images.size() != 1 || images[0].bits != 8 || images[0].hasAlpha) return {};
    Writer writer(images[0]);
    if (!writer.run()) return {};
    return std::vector<std::uint8_t>(writer.data, writer.data + writer.size);
}

} // namespace imageio
