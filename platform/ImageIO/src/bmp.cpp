// Reading BMP files.
#include "decoder.h"

#include <array>
#include <bit>
#include <cstring>

namespace imageio {

namespace {

enum Compression { rgb = 0, rle8 = 1, rle4 = 2, bitFields = 3, alphaBitFields = 6 };

/// Little-endian numbers of the file. Reading beyond its end throws Damaged.
class Fields {
  public:
    explicit Fields(Bytes file) : file_(file) {}
    std::uint32_t byte(std::size_t at) const {
        if (at >= file_.size()) throw Damaged("BMP is cut off");
        return file_[at];
    }
    std::uint32_t u16(std::size_t at) const { return byte(at) | byte(at + 1) << 8; }
    std::uint32_t u32(std::size_t at) const { return u16(at) | u16(at + 2) << 16; }
    std::int32_t s32(std::size_t at) const { return static_cast<std::int32_t>(u32(at)); }
    Bytes bytes(std::size_t at, std::size_t size) const {
        if (at > file_.size() || size > file_.size() - at) throw Damaged("BMP is cut off");
        return file_.subspan(at, size);
    }

  private:
    Bytes file_;
};

/// The bits of a pixel word that hold one component.
struct Mask {
    std::uint32_t bits = 0;
    std::uint8_t operator()(std::uint32_t word) const {
        if (!bits) return 0;
        std::uint32_t top = bits >> std::countr_zero(bits);
        return static_cast<std::uint8_t>(std::uint64_t((word & bits) >> std::countr_zero(bits)) * 255 / top);
    }
};

struct Header {
    explicit Header(const Fields& f) : fields(f) {
        std::uint32_t size = f.u32(14);
        offset = f.u32(10);
        bool core = size == 12;
        if (!core && size < 40) throw Damaged("BMP header");
        std::int64_t w = core ? f.u16(18) : f.s32(18), h = core ? f.u16(20) : f.s32(22);
        topDown = h < 0;
        if (w <= 0 || h == 0) throw Damaged("BMP size");
        width = static_cast<std::size_t>(w);
        height = static_cast<std::size_t>(topDown ? -h : h);
        checkSize(width, height);
        depth = static_cast<int>(core ? f.u16(24) : f.u16(28));
        compression = core ? std::uint32_t(rgb) : f.u32(30);
        paletteAt = 14 + size;
        paletteEntry = core ? 3 : 4;
        if (!core) {
            dpiX = f.s32(38) * 0.0254;
            dpiY = f.s32(42) * 0.0254;
            colorsUsed = f.u32(46);
        }
        bool masked = compression == bitFields || compression == alphaBitFields;
        if (masked || size >= 52) {
            // The masks follow a short header and are part of a longer one, at the same place.
            for (std::size_t k = 0; k < 3; ++k) masks[k].bits = f.u32(54 + 4 * k);
            if (compression == alphaBitFields || size >= 56) masks[3].bits = f.u32(66);
            if (size == 40) paletteAt += compression == alphaBitFields ? 16 : 12;
        }
        if (!masked) {
            // Bytes in the order B G R, or 5 bits each.
            if (depth == 16) masks = {{{0x7C00}, {0x3E0}, {0x1F}, {0}}};
            if (depth == 32) masks = {{{0xFF0000}, {0xFF00}, {0xFF}, {0}}};
        }
        if (size >= 124 && f.u32(70) == 0x4D424544) icc = f.bytes(14 + f.u32(126), f.u32(130)); // "MBED"
        bool known = compression == rgb
                         ? depth == 1 || depth == 4 || depth == 8 || depth == 16 || depth == 24 || depth == 32
                     : compression == rle8 ? depth == 8 && !topDown
                     : compression == rle4 ? depth == 4 && !topDown
                     : masked              ? depth == 16 || depth == 32
                                           : false;
        if (!known) throw Damaged("unknown kind of BMP");
    }

    std::vector<std::array<std::uint8_t, 3>> palette() const {
        std::size_t n = colorsUsed ? colorsUsed : std::size_t(1) << depth;
        if (n > 256) throw Damaged("BMP palette");
        std::vector<std::array<std::uint8_t, 3>> colors(n);
        for (std::size_t i = 0; i < n; ++i) {
            Bytes p = fields.bytes(paletteAt + i * paletteEntry, 3);
            colors[i] = {p[2], p[1], p[0]};
        }
        return colors;
    }
    std::size_t rowOf(std::size_t line) const { return topDown ? line : height - 1 - line; }

    const Fields& fields;
    std::size_t offset = 0, width = 0, height = 0, paletteAt = 0, paletteEntry = 4;
    bool topDown = false;
    int depth = 0;
    std::uint32_t compression = 0, colorsUsed = 0;
    std::array<Mask, 4> masks = {};
    double dpiX = 0, dpiY = 0;
    Bytes icc;
};

/// Rows of palette indices, one byte each, 0 where a run-length code skips.
std::vector<std::uint8_t> unpackRuns(const Header& h) {
    std::vector<std::uint8_t> out(h.width * h.height);
    std::size_t at = h.offset, x = 0, line = 0;
    auto put = [&](std::uint32_t color) {
        if (x < h.width && line < h.height)
            out[h.rowOf(line) * h.width + x] = static_cast<std::uint8_t>(color);
        ++x;
    };
    while (line < h.height || h.fields.byte(at) == 0) {
        std::uint32_t n = h.fields.byte(at), code = h.fields.byte(at + 1);
        at += 2;
        auto nibble = [&](std::uint32_t byte, std::uint32_t i) {
            return h.compression == rle8 ? byte : i % 2 ? byte & 15 : byte >> 4;
        };
        if (n) {
            for (std::uint32_t i = 0; i < n; ++i) put(nibble(code, i));
        } else if (code == 0) {
            x = 0;
            ++line;
        } else if (code == 1) {
            return out;
        } else if (code == 2) {
            x += h.fields.byte(at);
            line += h.fields.byte(at + 1);
            at += 2;
        } else {
            // Literal pixels, padded to whole words.
            std::uint32_t bytes = h.compression == rle8 ? code : (code + 1) / 2;
            for (std::uint32_t i = 0; i < code; ++i)
                put(nibble(h.fields.byte(at + (h.compression == rle8 ? i : i / 2)), i));
            at += (bytes + 1) / 2 * 2;
        }
    }
    throw Damaged("BMP without end");
}

void readIndexed(const Header& h, const Pixels& out) {
    auto palette = h.palette();
    std::vector<std::uint8_t> runs;
    if (h.compression != rgb) runs = unpackRuns(h);
    std::size_t rowBytes = (h.width * static_cast<std::size_t>(h.depth) + 31) / 32 * 4;
    for (std::size_t line = 0; line < h.height; ++line) {
        std::size_t y = h.rowOf(line);
        const std::uint8_t* packed =
            runs.empty() ? h.fields.bytes(h.offset + line * rowBytes, rowBytes).data() : nullptr;
        std::uint8_t* to = out.row(y);
        for (std::size_t x = 0; x < h.width; ++x, to += 4) {
            std::size_t index;
            if (packed) {
                std::size_t bit = x * static_cast<std::size_t>(h.depth);
                auto shift = static_cast<unsigned>(8 - h.depth) - bit % 8;
                index = packed[bit / 8] >> shift & ((1u << h.depth) - 1);
            } else {
                index = runs[y * h.width + x];
            }
            if (index >= palette.size()) throw Damaged("BMP colour outside of its palette");
            std::copy(palette[index].begin(), palette[index].end(), to);
            to[3] = 255;
        }
    }
}

void readDirect(const Header& h, const Pixels& out) {
    auto pixelBytes = static_cast<std::size_t>(h.depth / 8);
    std::size_t rowBytes = (h.width * pixelBytes + 3) / 4 * 4;
    for (std::size_t line = 0; line < h.height; ++line) {
        // The padding of the last row is often missing.
        std::size_t size = line + 1 < h.height ? rowBytes : h.width * pixelBytes;
        const std::uint8_t* p = h.fields.bytes(h.offset + line * rowBytes, size).data();
        std::uint8_t* to = out.row(h.rowOf(line));
        for (std::size_t x = 0; x < h.width; ++x, p += pixelBytes, to += 4) {
            if (h.depth == 24) {
                to[0] = p[2];
                to[1] = p[1];
                to[2] = p[0];
                to[3] = 255;
                continue;
            }
            std::uint32_t word = p[0] | std::uint32_t(p[1]) << 8;
            if (h.depth == 32) word |= std::uint32_t(p[2]) << 16 | std::uint32_t(p[3]) << 24;
            for (std::size_t k = 0; k < 3; ++k) to[k] = h.masks[k](word);
            to[3] = h.masks[3].bits ? h.masks[3](word) : 255;
        }
    }
}

Decoded decode(Bytes file, std::size_t, bool wantsPixels) {
    Fields fields(file);
    Header header(fields);
    Decoded result;
    Info& info = result.info;
    info.width = header.width;
    info.height = header.height;
    info.isIndexed = header.depth <= 8;
    info.hasAlpha = header.masks[3].bits;
    info.dpiX = header.dpiX;
    info.dpiY = header.dpiY;
    setProfile(info, header.icc, 3, color::ColorSpace::sRGB());
    if (!wantsPixels) return result;
    result.pixels.alpha = info.hasAlpha ? Alpha::straight : Alpha::none;
    result.pixels.allocate(info.width, info.height);
    if (info.isIndexed)
        readIndexed(header, result.pixels);
    else
        readDirect(header, result.pixels);
    return result;
}

bool recognises(Bytes file) { return file.size() >= 26 && file[0] == 'B' && file[1] == 'M'; }

} // namespace

const Format bmpFormat = {"com.microsoft.bmp", recognises, one, decode};

} // namespace imageio
