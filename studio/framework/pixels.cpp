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

void Pixels::draw(const Pixels& source, Place x, Place y, Place w, Place h, std::int64_t sx, std::int64_t sy,
                  std::int64_t sw, std::int64_t sh) {
    if (w < 1 || h < 1 || sw < 1 || sh < 1) return;
    Range rows = visible(y, h, height), columns = visible(x, w, width);
    if (w == sw && h == sh) {
        Range sourceRows = visible(sy, sh, source.height), sourceColumns = visible(sx, sw, source.width);
        auto both = [](Range a, Range b, std::int64_t shift) {
            return Range{int(std::max<std::int64_t>(a.from, b.from + shift)),
                         int(std::min<std::int64_t>(a.to, b.to + shift))};
        };
        rows = both(rows, sourceRows, y - sy);
        columns = both(columns, sourceColumns, x - sx);
        for (int row = rows.from; row < rows.to; ++row)
            for (int column = columns.from; column < columns.to; ++column)
                over(at(column, row), source.at(int(column - x + sx), int(row - y + sy)));
        return;
    }
    // The source pixels that a target pixel covers, at least one whole pixel wide.
    struct Span {
        std::int64_t first, last;
        double firstWeight, lastWeight;

        Span(std::int64_t index, std::int64_t target, std::int64_t origin, std::int64_t length) {
            double scale = double(length) / double(target), width = std::max(scale, 1.0);
            double middle = double(origin) + (double(index) + 0.5) * scale, end = double(origin + length);
            double low = std::clamp(middle - width / 2, double(origin), end - width * 0.5);
            double high = std::min(low + width, end);
            first = std::int64_t(std::floor(low));
            last = std::max(std::int64_t(std::ceil(high)) - 1, first);
            firstWeight = first == last ? high - low : double(first) + 1 - low;
            lastWeight = first == last ? high - low : high - double(last);
        }
        double weight(std::int64_t i) const { return i == first ? firstWeight : i == last ? lastWeight : 1; }
        double total() const {
            return first == last ? firstWeight : firstWeight + lastWeight + double(last - first - 1);
        }
    };
    for (int row = rows.from; row < rows.to; ++row) {
        Span down(row - y, h, sy, sh);
        Range there = visible(down.first, down.last - down.first + 1, source.height);
        for (int column = columns.from; column < columns.to; ++column) {
            Span across(column - x, w, sx, sw);
            Range here = visible(across.first, across.last - across.first + 1, source.width);
            double sum[4] = {}, total = down.total() * across.total();
            for (int v = there.from; v < there.to; ++v)
                for (int u = here.from; u < here.to; ++u) {
                    double weight = down.weight(v) * across.weight(u);
                    for (int i = 0; i < 4; ++i) sum[i] += weight * source.at(u, v)[i];
                }
            std::uint8_t pixel[4];
            for (int i = 0; i < 4; ++i) pixel[i] = std::uint8_t(total > 0 ? sum[i] / total + 0.5 : 0);
            over(at(column, row), pixel);
        }
    }
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
