// Writing GIF files, with giflib. A picture of more than 255 colours loses some; what is less than half
// opaque becomes transparent.
#include "encoder.h"

#include <gif_lib.h>

#include <algorithm>
#include <array>
#include <map>
#include <memory>

namespace imageio {

namespace {

constexpr int kTransparent = 255, kColors = 255;

int append(GifFileType* gif, const GifByteType* data, int size) {
    auto* out = static_cast<std::vector<std::uint8_t>*>(gif->UserData);
    out->insert(out->end(), data, data + size);
    return size;
}

struct Planes {
    std::vector<GifByteType> red, green, blue;
    std::vector<bool> clear;
};

Planes readPlanes(const OutputImage& image) {
    Planes result;
    std::size_t samples = image.rowBytes() / image.width;
    std::vector<std::uint8_t> row(image.rowBytes());
    for (std::size_t y = 0; y < image.height; ++y) {
        image.rows(y, 1, row.data());
        for (std::size_t x = 0; x < image.width; ++x) {
            const std::uint8_t* p = &row[x * samples];
            bool color = image.colors == 3;
            result.red.push_back(p[0]);
            result.green.push_back(p[color ? 1 : 0]);
            result.blue.push_back(p[color ? 2 : 0]);
            result.clear.push_back(image.hasAlpha && p[samples - 1] < 128);
        }
    }
    return result;
}

/// The picture's own colours where there are few enough; otherwise those that the library chooses.
bool chooseColors(const OutputImage& image, Planes& planes, std::vector<GifByteType>& pixels,
                  std::array<GifColorType, 256>& palette) {
    std::map<std::uint32_t, GifByteType> known;
    pixels.resize(planes.red.size());
    bool few = true;
    for (std::size_t i = 0; i < pixels.size() && few; ++i) {
        if (planes.clear[i]) {
            pixels[i] = kTransparent;
            continue;
        }
        std::uint32_t rgb =
            static_cast<std::uint32_t>(planes.red[i] << 16 | planes.green[i] << 8 | planes.blue[i]);
        auto [entry, fresh] = known.try_emplace(rgb, static_cast<GifByteType>(known.size()));
        few = known.size() <= kColors;
        if (fresh && few) palette[entry->second] = {planes.red[i], planes.green[i], planes.blue[i]};
        pixels[i] = entry->second;
    }
    if (few) return true;
    int count = kColors;
    if (GifQuantizeBuffer(static_cast<unsigned>(image.width), static_cast<unsigned>(image.height), &count,
                          planes.red.data(), planes.green.data(), planes.blue.data(), pixels.data(),
                          palette.data()) == GIF_ERROR)
        return false;
    for (std::size_t i = 0; i < pixels.size(); ++i)
        if (planes.clear[i]) pixels[i] = kTransparent;
    return true;
}

} // namespace

std::vector<std::uint8_t> encodeGIF(std::span<const OutputImage> images) {
    const OutputImage& image = images[0];
    if (image.width > 65535 || image.height > 65535) return {};
    Planes planes = readPlanes(image);
    std::vector<GifByteType> pixels;
    std::array<GifColorType, 256> palette = {};
    if (!chooseColors(image, planes, pixels, palette)) return {};
    std::vector<std::uint8_t> out;
    int error = 0;
    auto width = static_cast<int>(image.width), height = static_cast<int>(image.height);
    std::unique_ptr<ColorMapObject, void (*)(ColorMapObject*)> map(GifMakeMapObject(256, palette.data()),
                                                                   GifFreeMapObject);
    std::unique_ptr<GifFileType, void (*)(GifFileType*)> gif(EGifOpen(&out, append, &error),
                                                             [](GifFileType* g) {
                                                                 int ignored = 0;
                                                                 EGifCloseFile(g, &ignored);
                                                             });
    if (!map || !gif) return {};
    EGifSetGifVersion(gif.get(), true);
    GraphicsControlBlock control = {0, false, 0, image.hasAlpha ? kTransparent : NO_TRANSPARENT_COLOR};
    GifByteType extension[4];
    EGifGCBToExtension(&control, extension);
    bool written =
        EGifPutScreenDesc(gif.get(), width, height, 8, 0, map.get()) == GIF_OK &&
        EGifPutExtension(gif.get(), GRAPHICS_EXT_FUNC_CODE, sizeof extension, extension) == GIF_OK &&
        EGifPutImageDesc(gif.get(), 0, 0, width, height, false, nullptr) == GIF_OK;
    for (int y = 0; written && y < height; ++y)
        written = EGifPutLine(gif.get(), &pixels[static_cast<std::size_t>(y) * image.width], width) == GIF_OK;
    gif.reset(); // writes the trailer
    return written ? out : std::vector<std::uint8_t>();
}

} // namespace imageio
