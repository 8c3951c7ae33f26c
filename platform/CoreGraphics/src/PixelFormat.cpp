// Pixel layouts: from Core Graphics' numbers, and to and from floats.
#include <cg/pixelformat.h>

#include <algorithm>
#include <bit>
#include <cstring>

namespace cg {

namespace {

std::uint16_t swapBytes(std::uint16_t v) { return __builtin_bswap16(v); }
std::uint32_t swapBytes(std::uint32_t v) { return __builtin_bswap32(v); }

template <class Word>
Word load(const std::uint8_t* p, bool swapped) {
    Word word;
    std::memcpy(&word, p, sizeof word);
    return swapped ? swapBytes(word) : word;
}

template <class Word>
void store(std::uint8_t* p, Word word, bool swapped) {
    if (swapped) word = swapBytes(word);
    std::memcpy(p, &word, sizeof word);
}

/// Clamps to 0..1; NaN becomes 0.
float unit(float v) { return v > 0 ? (v < 1 ? v : 1.f) : 0.f; }

template <class Read>
void readSamples(float* out, std::size_t n, Read read) {
    for (std::size_t i = 0; i < n; ++i) out[i] = read(i);
}

} // namespace

std::optional<PixelFormat> PixelFormat::of(std::size_t bits, std::size_t pixelBits, int colors,
                                           CGBitmapInfo info) {
    CGImageAlphaInfo alphaInfo = info & kCGBitmapAlphaInfoMask;
    CGBitmapInfo order = info & kCGBitmapByteOrderMask;
    bool isFloat = info & kCGBitmapFloatComponents;
    PixelFormat f;
    f.bits = static_cast<int>(bits);
    f.pixelBits = static_cast<int>(pixelBits);
    f.colors = colors;
    f.offset.fill(-1);

    if (isFloat != (bits == 32)) return {};
    if (bits != 8 && bits != 16 && bits != 32) {
        // Packed samples: one to a pixel, no alpha.
        bool packed = (bits == 1 || bits == 2 || bits == 4) && pixelBits == bits && colors == 1;
        if (!packed || alphaInfo != kCGImageAlphaNone) return {};
        f.offset[0] = 0;
        return f;
    }

    if (alphaInfo == kCGImageAlphaOnly) {
        f.colors = 0;
        f.alpha = Alpha::straight;
        f.offset[alphaPlane] = 0;
        return bits == 8 && pixelBits == 8 ? std::optional(f) : std::nullopt;
    }

    bool first = alphaInfo == kCGImageAlphaPremultipliedFirst || alphaInfo == kCGImageAlphaFirst ||
                 alphaInfo == kCGImageAlphaNoneSkipFirst;
    bool fourth = alphaInfo != kCGImageAlphaNone;
    int samples = colors + fourth;
    if (alphaInfo > kCGImageAlphaOnly || pixelBits != static_cast<std::size_t>(samples) * bits) return {};
    for (int k = 0; k < colors; ++k) f.offset[static_cast<std::size_t>(k)] = k + first;
    int extra = first ? 0 : colors;
    if (alphaInfo == kCGImageAlphaNoneSkipFirst || alphaInfo == kCGImageAlphaNoneSkipLast) {
        f.padding = extra;
    } else if (fourth) {
        f.offset[alphaPlane] = extra;
        bool straight = alphaInfo == kCGImageAlphaFirst || alphaInfo == kCGImageAlphaLast;
        f.alpha = straight ? Alpha::straight : Alpha::premultiplied;
    }

    if (bits == 8) {
        // Little-endian words of 32 bits have their four bytes in reverse.
        if (order == kCGBitmapByteOrder32Little) {
            if (pixelBits != 32) return {};
            for (int& o : f.offset) o = o < 0 ? o : 3 - o;
            f.padding = f.padding < 0 ? -1 : 3 - f.padding;
        } else if (order == kCGBitmapByteOrder16Little) {
            return {};
        }
        return f;
    }
    CGBitmapInfo little = bits == 16 ? kCGBitmapByteOrder16Little : kCGBitmapByteOrder32Little;
    CGBitmapInfo big = bits == 16 ? kCGBitmapByteOrder16Big : kCGBitmapByteOrder32Big;
    if (order != kCGBitmapByteOrderDefault && order != little && order != big) return {};
    // Without a byte order, samples are big-endian.
    f.swapped = (order == little) != (std::endian::native == std::endian::little);
    return f;
}

void PixelFormat::unpack(const std::uint8_t* row, std::size_t x, std::size_t n, const Planes& out) const {
    std::size_t pixelBytes = static_cast<std::size_t>(pixelBits) / 8;
    for (std::size_t k = 0; k < out.size(); ++k) {
        if (k < alphaPlane && static_cast<int>(k) >= colors) continue;
        if (offset[k] < 0) {
            std::fill_n(out[k], n, 1.f);
            continue;
        }
        if (bits < 8) {
            unsigned top = (1u << bits) - 1;
            readSamples(out[k], n, [=, this](std::size_t i) {
                std::size_t bit = (x + i) * static_cast<std::size_t>(bits);
                unsigned shift = 8 - static_cast<unsigned>(bits) - bit % 8;
                return static_cast<float>((row[bit / 8] >> shift) & top) / static_cast<float>(top);
            });
            continue;
        }
        const std::uint8_t* p = row + x * pixelBytes + static_cast<std::size_t>(offset[k] * bits / 8);
        bool swap = swapped;
        if (bits == 8)
            readSamples(out[k], n,
                        [=](std::size_t i) { return static_cast<float>(p[i * pixelBytes]) / 255; });
        else if (bits == 16)
            readSamples(out[k], n, [=](std::size_t i) {
                return static_cast<float>(load<std::uint16_t>(p + i * pixelBytes, swap)) / 65535;
            });
        else
            readSamples(out[k], n, [=](std::size_t i) {
                return std::bit_cast<float>(load<std::uint32_t>(p + i * pixelBytes, swap));
            });
    }
}

void PixelFormat::pack(std::uint8_t* row, std::size_t x, std::size_t n, const Planes& in) const {
    std::size_t pixelBytes = static_cast<std::size_t>(pixelBits) / 8,
                sampleBytes = static_cast<std::size_t>(bits) / 8;
    row += x * pixelBytes;
    auto write = [&](int sample, auto value) {
        std::uint8_t* p = row + static_cast<std::size_t>(sample) * sampleBytes;
        bool swap = swapped;
        if (bits == 8)
            for (std::size_t i = 0; i < n; ++i)
                p[i * pixelBytes] = static_cast<std::uint8_t>(static_cast<int>(unit(value(i)) * 255 + 0.5f));
        else if (bits == 16)
            for (std::size_t i = 0; i < n; ++i)
                store(p + i * pixelBytes, static_cast<std::uint16_t>(unit(value(i)) * 65535 + 0.5f), swap);
        else
            for (std::size_t i = 0; i < n; ++i)
                store(p + i * pixelBytes, std::bit_cast<std::uint32_t>(value(i)), swap);
    };
    for (std::size_t k = 0; k < in.size(); ++k)
        if (offset[k] >= 0 && (k == alphaPlane || static_cast<int>(k) < colors))
            write(offset[k], [plane = in[k]](std::size_t i) { return plane[i]; });
    if (padding >= 0) write(padding, [](std::size_t) { return 1.f; });
}

void PlaneBuffer::resize(std::size_t width) {
    memory_.reset(width ? new float[width * planes_.size()]() : nullptr);
    for (std::size_t k = 0; k < planes_.size(); ++k) planes_[k] = memory_.get() + k * width;
}

Planes PlaneBuffer::at(std::size_t x) const {
    Planes shifted = planes_;
    for (float*& plane : shifted) plane += x;
    return shifted;
}

} // namespace cg
