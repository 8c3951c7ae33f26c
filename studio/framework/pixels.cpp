#include "pixels.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

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

void Pixels::blend(int x, int y, std::uint32_t color) {
    if (contains(x, y)) over(at(x, y), Premultiplied(color).argb);
}

void Pixels::fill(std::uint32_t color) { clearRect(0, 0, width, height, color); }

void Pixels::fillRect(int x, int y, int w, int h, std::uint32_t color) {
    Premultiplied source(color);
    for (int row = std::max(y, 0); row < std::min(y + h, height); ++row)
        for (int column = std::max(x, 0); column < std::min(x + w, width); ++column)
            over(at(column, row), source.argb);
}

void Pixels::clearRect(int x, int y, int w, int h, std::uint32_t color) {
    Premultiplied source(color);
    for (int row = std::max(y, 0); row < std::min(y + h, height); ++row)
        for (int column = std::max(x, 0); column < std::min(x + w, width); ++column)
            std::memcpy(at(column, row), source.argb, 4);
}

// A pixel belongs to the oval when its centre does.
void Pixels::fillOval(int x, int y, int w, int h, std::uint32_t color) {
    for (int row = 0; row < h; ++row) {
        double v = (row + 0.5) / h * 2 - 1;
        double half = std::sqrt(std::max(0.0, 1 - v * v)) * w / 2;
        int from = int(std::ceil(w / 2.0 - half - 0.5)), to = int(std::floor(w / 2.0 + half - 0.5));
        if (to >= from) fillRect(x + from, y + row, to - from + 1, 1, color);
    }
}

void Pixels::drawOval(int x, int y, int w, int h, int pen, std::uint32_t color) {
    auto inside = [&](double column, double row, double inset) {
        double rx = w / 2.0 - inset, ry = h / 2.0 - inset;
        if (rx <= 0 || ry <= 0) return false;
        double u = (column + 0.5 - w / 2.0) / rx, v = (row + 0.5 - h / 2.0) / ry;
        return u * u + v * v <= 1;
    };
    for (int row = 0; row < h; ++row)
        for (int column = 0; column < w; ++column)
            if (inside(column, row, 0) && !inside(column, row, pen)) blend(x + column, y + row, color);
}

void Pixels::drawLine(int x1, int y1, int x2, int y2, int penWidth, int penHeight, std::uint32_t color) {
    int steps = std::max({std::abs(x2 - x1), std::abs(y2 - y1), 1});
    if (penWidth == 1 && penHeight == 1 && x1 != x2 && y1 != y2) {
        for (int i = 0; i <= steps; ++i)
            blend(x1 + int(std::lround(double(x2 - x1) * i / steps)),
                  y1 + int(std::lround(double(y2 - y1) * i / steps)), color);
        return;
    }
    if (x1 == x2 || y1 == y2) {
        fillRect(std::min(x1, x2), std::min(y1, y2), std::abs(x2 - x1) + penWidth,
                 std::abs(y2 - y1) + penHeight, color);
        return;
    }
    // A thick slanted line: each pixel that the pen touches is drawn only once.
    Pixels touched;
    int left = std::min(x1, x2), top = std::min(y1, y2);
    touched.resize(std::abs(x2 - x1) + penWidth, std::abs(y2 - y1) + penHeight);
    for (int i = 0; i <= steps; ++i)
        touched.clearRect(int(std::lround(double(x2 - x1) * i / steps)) + x1 - left,
                          int(std::lround(double(y2 - y1) * i / steps)) + y1 - top, penWidth, penHeight,
                          color);
    draw(touched, left, top, touched.width, touched.height, 0, 0, touched.width, touched.height);
}

void Pixels::draw(const Pixels& source, int x, int y, int w, int h, int sx, int sy, int sw, int sh) {
    if (w < 1 || h < 1 || sw < 1 || sh < 1) return;
    struct Span {
        int first, last;
        double firstWeight, lastWeight;
    };
    // The source pixels that a target pixel covers, at least one whole pixel wide.
    auto span = [](int index, int target, int origin, int length) {
        double scale = double(length) / target, width = std::max(scale, 1.0);
        double middle = origin + (index + 0.5) * scale;
        double low = std::clamp(middle - width / 2, double(origin), double(origin + length) - width * 0.5);
        double high = std::min(low + width, double(origin + length));
        Span result{int(std::floor(low)), int(std::ceil(high)) - 1, 1, 1};
        result.last = std::max(result.last, result.first);
        if (result.first == result.last) {
            result.firstWeight = result.lastWeight = high - low;
        } else {
            result.firstWeight = result.first + 1 - low;
            result.lastWeight = high - result.last;
        }
        return result;
    };
    bool plain = w == sw && h == sh;
    for (int row = std::max(0, -y); row < std::min(h, height - y); ++row) {
        Span rows = span(row, h, sy, sh);
        for (int column = std::max(0, -x); column < std::min(w, width - x); ++column) {
            if (plain) {
                if (source.contains(sx + column, sy + row))
                    over(at(x + column, y + row), source.at(sx + column, sy + row));
                continue;
            }
            Span columns = span(column, w, sx, sw);
            double sum[4] = {}, total = 0;
            for (int v = rows.first; v <= rows.last; ++v) {
                double rowWeight = v == rows.first ? rows.firstWeight : v == rows.last ? rows.lastWeight : 1;
                for (int u = columns.first; u <= columns.last; ++u) {
                    double weight = rowWeight * (u == columns.first  ? columns.firstWeight
                                                 : u == columns.last ? columns.lastWeight
                                                                     : 1);
                    total += weight;
                    if (!source.contains(u, v)) continue;
                    for (int i = 0; i < 4; ++i) sum[i] += weight * source.at(u, v)[i];
                }
            }
            std::uint8_t pixel[4];
            for (int i = 0; i < 4; ++i) pixel[i] = std::uint8_t(total > 0 ? sum[i] / total + 0.5 : 0);
            over(at(x + column, y + row), pixel);
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
