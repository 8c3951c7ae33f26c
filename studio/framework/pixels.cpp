#include "pixels.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace studio {

namespace {

std::uint8_t times(unsigned a, unsigned b) { return std::uint8_t((a * b + 127) / 255); }

struct Premultiplied {
    std::uint8_t argb[4];
    explicit Premultiplied(std::uint32_t color) {
        unsigned alpha = color >> 24;
        argb[0] = std::uint8_t(alpha);
        for (int i = 1; i < 4; ++i) argb[i] = times(color >> (24 - 8 * i) & 255, alpha);
    }
};

void over(std::uint8_t* target, const std::uint8_t* source) {
    unsigned left = 255 - source[0];
    if (left == 0) {
        std::memcpy(target, source, 4);
        return;
    }
    for (int i = 0; i < 4; ++i) target[i] = std::uint8_t(std::min(255, source[i] + times(target[i], left)));
}

} // namespace

void Pixels::resize(int w, int h) {
    width = w;
    height = h;
    bytes.assign(std::size_t(w) * std::size_t(h) * 4, 0);
}

std::uint32_t Pixels::color(int x, int y) const {
    const std::uint8_t* p = at(x, y);
    std::uint32_t result = std::uint32_t(p[0]) << 24;
    for (int i = 1; i < 4; ++i)
        if (p[0]) result |= std::min(255u, (p[i] * 255u + p[0] / 2) / p[0]) << (24 - 8 * i);
    return result;
}

void Pixels::setColor(int x, int y, std::uint32_t color) {
    std::memcpy(at(x, y), Premultiplied(color).argb, 4);
}

void Pixels::fill(std::uint32_t color) { clearRect(0, 0, width, height, color); }

// ---- drawing ---------------------------------------------------------------------------------------------
// Places and sizes are any 32-bit numbers, whose sums need 64 bits. What lies outside of the picture is never
// visited.

namespace {

struct Range {
    int from, to; // the end is not part of it
};
// What of `length` pixels from `start` on lies within 0 to `size`.
Range visible(std::int64_t start, std::int64_t length, int size) {
    auto within = [size](std::int64_t v) { return int(std::clamp<std::int64_t>(v, 0, size)); };
    return {within(start), within(start + length)};
}

} // namespace

void Pixels::fillRect(Place x, Place y, Place w, Place h, std::uint32_t color) {
    Premultiplied source(color);
    Range rows = visible(y, h, height), columns = visible(x, w, width);
    for (int row = rows.from; row < rows.to; ++row)
        for (int column = columns.from; column < columns.to; ++column) over(at(column, row), source.argb);
}

void Pixels::clearRect(Place x, Place y, Place w, Place h, std::uint32_t color) {
    Premultiplied source(color);
    Range rows = visible(y, h, height), columns = visible(x, w, width);
    for (int row = rows.from; row < rows.to; ++row)
        for (int column = columns.from; column < columns.to; ++column)
            std::memcpy(at(column, row), source.argb, 4);
}

void Pixels::draw(const Pixels& source, Place x, Place y, Place w, Place h, Place sx, Place sy) {
    auto both = [](Range a, Range b, std::int64_t shift) {
        return Range{int(std::max<std::int64_t>(a.from, b.from + shift)),
                     int(std::min<std::int64_t>(a.to, b.to + shift))};
    };
    Range rows = both(visible(y, h, height), visible(sy, h, source.height), y - sy);
    Range columns = both(visible(x, w, width), visible(sx, w, source.width), x - sx);
    for (int row = rows.from; row < rows.to; ++row)
        for (int column = columns.from; column < columns.to; ++column)
            over(at(column, row), source.at(int(column - x + sx), int(row - y + sy)));
}

void Pixels::applyMask(const Pixels& mask) {
    for (int y = 0; y < std::min(height, mask.height); ++y)
        for (int x = 0; x < std::min(width, mask.width); ++x) {
            const std::uint8_t* m = mask.at(x, y);
            unsigned gray = (m[1] * 77u + m[2] * 151u + m[3] * 28u) >> 8;
            if (gray == 0) continue;
            std::uint8_t* p = at(x, y);
            for (int i = 0; i < 4; ++i) p[i] = times(p[i], 255 - gray);
        }
}

} // namespace studio
