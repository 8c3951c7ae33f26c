// Writing WebP files, with libwebp.
#include "encoder.h"

#include <algorithm>
#include <memory>
#include <new>

#include <webp/encode.h>
#include <webp/mux.h>

namespace imageio {

namespace {

/// The library's picture: a word 0xAARRGGBB for each pixel.
struct Picture : WebPPicture {
    Picture() { initialised = WebPPictureInit(this); }
    ~Picture() { WebPPictureFree(this); }
    bool initialised;
};

bool readPixels(Picture& picture, const OutputImage& image) {
    picture.use_argb = 1;
    picture.width = static_cast<int>(image.width);
    picture.height = static_cast<int>(image.height);
    if (!WebPPictureAlloc(&picture)) return false;
    std::vector<std::uint8_t> row(image.rowBytes());
    auto samples = static_cast<std::size_t>(image.colors + image.hasAlpha);
    for (std::size_t y = 0; y < image.height; ++y) {
        image.rows(y, 1, row.data());
        std::uint32_t* out = picture.argb + y * static_cast<std::size_t>(picture.argb_stride);
        for (std::size_t x = 0; x < image.width; ++x) {
            const std::uint8_t* p = row.data() + x * samples;
            std::uint32_t r = p[0], g = image.colors == 3 ? p[1] : r, b = image.colors == 3 ? p[2] : r;
            std::uint32_t alpha = image.hasAlpha ? p[samples - 1] : 255;
            out[x] = alpha << 24 | r << 16 | g << 8 | b;
        }
    }
    return true;
}

/// The picture's data with its profile and metadata around it.
std::vector<std::uint8_t> assembled(const WebPMemoryWriter& data, const OutputImage& image) {
    std::unique_ptr<WebPMux, void (*)(WebPMux*)> mux(WebPMuxNew(), WebPMuxDelete);
    WebPData picture = {data.mem, data.size};
    bool good = mux && WebPMuxSetImage(mux.get(), &picture, 0) == WEBP_MUX_OK;
    auto add = [&](const char* name, const auto& contents) {
        WebPData chunk = {reinterpret_cast<const std::uint8_t*>(contents.data()), contents.size()};
        if (good && !contents.empty()) good = WebPMuxSetChunk(mux.get(), name, &chunk, 1) == WEBP_MUX_OK;
    };
    // The profile is one of RGB; without one, colours are sRGB's.
    if (!image.isSRGB && image.colors == 3) add("ICCP", image.icc);
    add("EXIF", exifBlock(image.metadata, image.orientation));
    add("XMP ", xmpPacket(image.metadata));
    WebPData file = {};
    if (!good || WebPMuxAssemble(mux.get(), &file) != WEBP_MUX_OK) return {};
    std::unique_ptr<const std::uint8_t, void (*)(const void*)> owner(
        file.bytes, [](const void* bytes) { WebPFree(const_cast<void*>(bytes)); });
    return {file.bytes, file.bytes + file.size};
}

} // namespace

std::vector<std::uint8_t> encodeWebP(std::span<const OutputImage> images) {
    if (images.size() != 1 || images[0].bits != 8) return {};
    const OutputImage& image = images[0];
    if (std::max(image.width, image.height) > WEBP_MAX_DIMENSION) return {};
    Picture picture;
    WebPConfig config;
    if (!picture.initialised || !WebPConfigInit(&config)) return {};
    config.quality = static_cast<float>(std::clamp(image.quality, 0., 1.) * 100);
    if (image.quality >= 1 && !WebPConfigLosslessPreset(&config, 6)) return {};
    config.exact = image.quality >= 1;
    if (!readPixels(picture, image)) throw std::bad_alloc();
    WebPMemoryWriter writer;
    WebPMemoryWriterInit(&writer);
    std::unique_ptr<WebPMemoryWriter, void (*)(WebPMemoryWriter*)> owner(&writer, WebPMemoryWriterClear);
    picture.writer = WebPMemoryWrite;
    picture.custom_ptr = &writer;
    return WebPEncode(&config, &picture) ? assembled(writer, image) : std::vector<std::uint8_t>();
}

} // namespace imageio
