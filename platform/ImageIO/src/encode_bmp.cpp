// Writing BMP files: 24 bits a pixel, the bottom row first.
#include "encoder.h"

#include <cmath>

namespace imageio {

namespace {

void word(std::vector<std::uint8_t>& out, std::uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i) out.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

} // namespace

std::vector<std::uint8_t> encodeBMP(std::span<const OutputImage> images) {
    constexpr std::size_t kHeaders = 14 + 40;
    const OutputImage& image = images[0];
    std::size_t stride = (image.width * 3 + 3) / 4 * 4, size = kHeaders + stride * image.height;
    if (image.width > INT32_MAX || image.height > INT32_MAX || size / stride < image.height) return {};
    std::vector<std::uint8_t> out;
    out.reserve(size);
    out.insert(out.end(), {'B', 'M'});
    word(out, static_cast<std::uint32_t>(size), 4);
    word(out, 0, 4);
    word(out, kHeaders, 4);
    word(out, 40, 4);
    word(out, static_cast<std::uint32_t>(image.width), 4);
    word(out, static_cast<std::uint32_t>(image.height), 4);
    word(out, 1, 2);  // planes
    word(out, 24, 2); // bits a pixel
    word(out, 0, 4);  // not compressed
    word(out, static_cast<std::uint32_t>(stride * image.height), 4);
    word(out, static_cast<std::uint32_t>(std::lround(image.dpiX / 0.0254)), 4);
    word(out, static_cast<std::uint32_t>(std::lround(image.dpiY / 0.0254)), 4);
    word(out, 0, 4); // no palette
    word(out, 0, 4);
    std::vector<std::uint8_t> row(image.rowBytes());
    for (std::size_t y = image.height; y-- > 0;) {
        image.rows(y, 1, row.data());
        auto colors = static_cast<std::size_t>(image.colors);
        for (std::size_t x = 0; x < image.width; ++x)
            for (std::size_t k = 3; k-- > 0;) out.push_back(row[x * colors + (colors == 3 ? k : 0)]);
        out.resize(out.size() + stride - image.width * 3);
    }
    return out;
}

} // namespace imageio
