// Rows of every pixel format to and from the engine's planes.
#include "codec.h"

#include <color/vecmath.h>

#include <limits>
#include <stdexcept>

namespace engine {

namespace simd = color::simd;

std::size_t bytesPerPixel(Format format) {
    switch (format) {
    case Format::Gray8:
        return 1;
    case Format::RGBA16:
        return 8;
    case Format::RGBAf:
        return 16;
    default:
        return 4;
    }
}

void checkLayout(const PixelLayout& l) {
    if (l.width <= 0 || l.height <= 0) throw std::invalid_argument("an image needs a positive size");
    auto model = l.format == Format::Gray8 ? color::Model::gray : color::Model::rgb;
    if (l.space && l.space->model() != model)
        throw std::invalid_argument("the colour space does not suit the pixel format");
}

Codec::Codec(const PixelLayout& layout, const RenderSettings& settings)
    : layout_(layout), samples_(layout.format == Format::Gray8 ? 1 : 4), alpha_(3), colour_{0, 1, 2} {
    if (layout.format == Format::ARGB8) alpha_ = 0, colour_ = {1, 2, 3};
    if (layout.format == Format::BGRA8) colour_ = {2, 1, 0};
    if (layout.format == Format::Gray8) colour_ = {0, 0, 0};
    if (layout.alpha == Alpha::opaque || layout.format == Format::Gray8) alpha_ = -1;
    if (settings.colorManaged && layout.space) {
        auto working = settings.working ? settings.working : color::ColorSpace::linearSRGB();
        // Equal spaces need no trip through linear light.
        if (!working->sameAs(*layout.space)) space_ = layout.space, working_ = settings.working;
    }
}

namespace {

template <class T>
void spread(const T* from, int stride, float scale, float* out, int n) {
    simd::run([=]() SIMD_INLINE {
        SIMD_LOOP
        for (int i = 0; i < n; ++i) out[i] = static_cast<float>(from[i * stride]) * scale;
    });
}

/// Larger numbers would turn into NaN in sums.
void spreadFinite(const float* from, int stride, float* out, int n) {
    simd::run([=]() SIMD_INLINE {
        SIMD_LOOP
        for (int i = 0; i < n; ++i) {
            float v = from[i * stride];
            out[i] = v == v ? simd::clamp(v, -1e15f, 1e15f) : 0;
        }
    });
}

/// 0..1 as a whole number up to `most`.
SIMD_INLINE inline std::uint32_t whole(float v, float most) {
    return static_cast<std::uint32_t>(static_cast<int>(simd::unit(v) * most + 0.5f));
}

template <class T>
void gather(const float* from, T* out, int stride, int n) {
    simd::run([=]() SIMD_INLINE {
        SIMD_LOOP
        for (int i = 0; i < n; ++i)
            out[i * stride] = static_cast<T>(whole(from[i], std::numeric_limits<T>::max()));
    });
}

// A pixel of four bytes is handled as one number, whose lowest byte is the first, because vectors of numbers
// are read and written at once, and bytes that lie apart one by one.

SIMD_INLINE inline std::uint32_t word(const std::uint8_t* pixels, int i) {
    std::uint32_t w;
    __builtin_memcpy(&w, pixels + 4 * i, 4);
    return w;
}

/// Byte `offset` of each pixel.
void spreadByte(const std::uint8_t* pixels, int offset, float* out, int n) {
    simd::run([=, shift = 8 * offset]() SIMD_INLINE {
        SIMD_LOOP
        for (int i = 0; i < n; ++i)
            out[i] = static_cast<float>(static_cast<int>(word(pixels, i) >> shift & 255)) * (1 / 255.f);
    });
}

/// Whether byte `offset` of each pixel is 255.
bool allFull(const std::uint8_t* pixels, int offset, int n) {
    std::uint32_t common = ~0u;
    simd::run([=, out = &common]() SIMD_INLINE {
        std::uint32_t all = ~0u;
        SIMD_LOOP
        for (int i = 0; i < n; ++i) all &= word(pixels, i);
        *out = all;
    });
    return (common >> 8 * offset & 255) == 255;
}

/// Each plane goes to the byte with its offset.
void gatherBytes(const Span& s, const std::array<int, 4>& offsets, std::uint8_t* out, int n) {
    simd::run([=, r = s.plane[0], g = s.plane[1], b = s.plane[2], a = s.plane[3], toR = 8 * offsets[0],
               toG = 8 * offsets[1], toB = 8 * offsets[2], toA = 8 * offsets[3]]() SIMD_INLINE {
        SIMD_LOOP
        for (int i = 0; i < n; ++i) {
            std::uint32_t w = whole(r[i], 255) << toR | whole(g[i], 255) << toG | whole(b[i], 255) << toB |
                              whole(a[i], 255) << toA;
            __builtin_memcpy(out + 4 * i, &w, 4);
        }
    });
}

void multiply(float* p, const float* by, int n) {
    simd::run([=]() SIMD_INLINE {
        SIMD_LOOP
        for (int i = 0; i < n; ++i) p[i] *= by[i];
    });
}

void divide(float* p, const float* by, int n) {
    simd::run([=]() SIMD_INLINE {
        SIMD_LOOP
        for (int i = 0; i < n; ++i) p[i] = by[i] > 0 ? p[i] / by[i] : 0;
    });
}

void atLeast1(const float* p, float* out, int n) {
    simd::run([=]() SIMD_INLINE {
        SIMD_LOOP
        for (int i = 0; i < n; ++i) out[i] = simd::max(p[i], 1);
    });
}

/// Makes good what rounding, as by weights that add up to 1, has taken from 1: without it an opaque picture
/// would be divided by its alpha.
void roundToOne(float* p, int n) {
    simd::run([=]() SIMD_INLINE {
        SIMD_LOOP
        for (int i = 0; i < n; ++i) p[i] = simd::abs(p[i] - 1) < 1e-6f ? 1 : p[i];
    });
}

bool allOne(const float* p, int n) {
    int differ = 0;
    simd::run([=, out = &differ]() SIMD_INLINE {
        int any = 0;
        SIMD_LOOP
        for (int i = 0; i < n; ++i) any |= p[i] == 1 ? 0 : 1;
        *out = any;
    });
    return !differ;
}

} // namespace

void Codec::decode(const std::uint8_t* pixels, int n, const Span& out) const {
    float* alpha = out.plane[3];
    auto read = [&](int offset, float* to) {
        if (layout_.format == Format::RGBAf)
            spreadFinite(reinterpret_cast<const float*>(pixels) + offset, samples_, to, n);
        else if (layout_.format == Format::RGBA16)
            spread(reinterpret_cast<const std::uint16_t*>(pixels) + offset, samples_, 1 / 65535.f, to, n);
        else if (samples_ == 4)
            spreadByte(pixels, offset, to, n);
        else
            spread(pixels + offset, samples_, 1 / 255.f, to, n);
    };
    bool bytes = layout_.format != Format::RGBA16 && layout_.format != Format::RGBAf;
    bool full = alpha_ < 0 || (bytes && allFull(pixels, alpha_, n));
    if (full) {
        std::fill_n(alpha, n, 1.f);
    } else {
        read(alpha_, alpha);
        full = !bytes && allOne(alpha, n);
    }
    bool premultiplied = layout_.alpha == Alpha::premultiplied && !full;
    if (space_ && bytes && !premultiplied) {
        space_->converter().decode8(pixels, samples_, colour_.data(), out.plane.data(), n);
    } else {
        for (int c = 0; c < 3; ++c) read(colour_[c], out.plane[c]);
        // Premultiplying came after coding, so it is undone before decoding.
        if (space_) {
            if (premultiplied)
                for (int c = 0; c < 3; ++c) divide(out.plane[c], alpha, n);
            space_->converter().decode(out.plane.data(), out.plane.data(), n);
        }
    }
    if (space_ && working_) working_->converter().encode(out.plane.data(), out.plane.data(), n);
    bool straightNow = layout_.alpha == Alpha::straight || space_;
    if (!full && straightNow)
        for (int c = 0; c < 3; ++c) multiply(out.plane[c], alpha, n);
}

void Codec::encode(const Span& s, int n, std::uint8_t* pixels) const {
    float* alpha = s.plane[3];
    bool floats = layout_.format == Format::RGBAf;
    bool straight = alpha_ >= 0 && layout_.alpha == Alpha::straight;
    // A target without alpha shows the image on black, and that is what premultiplied colours are. But sums
    // may have more than full alpha: everywhere, colours are coded for alpha 1, then multiplied by what it
    // is.
    if (!floats) roundToOne(alpha, n);
    if (alpha_ < 0) atLeast1(alpha, alpha, n);
    bool full = allOne(alpha, n);
    if (!full && (space_ || straight))
        for (int c = 0; c < 3; ++c) divide(s.plane[c], alpha, n);
    if (space_) {
        if (working_) working_->converter().decode(s.plane.data(), s.plane.data(), n);
        if (floats)
            space_->converter().encode(s.plane.data(), s.plane.data(), n);
        else
            space_->converter().encodeClipped(s.plane.data(), s.plane.data(), n);
    } else if (layout_.format == Format::Gray8) {
        float *r = s.plane[0], *g = s.plane[1], *b = s.plane[2];
        simd::run([=]() SIMD_INLINE {
            SIMD_LOOP
            for (int i = 0; i < n; ++i) r[i] = 0.2126f * r[i] + 0.7152f * g[i] + 0.0722f * b[i];
        });
    }
    if (!full && space_ && !straight) {
        for (int c = 0; c < 3; ++c) multiply(s.plane[c], alpha, n);
    } else if (!full && straight && !floats) {
        // Of an alpha that is cut to 1 the colours get what is above.
        float above[maxSpan];
        atLeast1(alpha, above, n);
        for (int c = 0; c < 3; ++c) multiply(s.plane[c], above, n);
    }
    if (alpha_ < 0) std::fill_n(alpha, n, 1.f);

    if (layout_.format == Format::Gray8) {
        gather(s.plane[0], pixels, 1, n);
        return;
    }
    int last = alpha_ >= 0 ? alpha_ : layout_.format == Format::ARGB8 ? 0 : 3;
    std::array<int, 4> offsets{colour_[0], colour_[1], colour_[2], last};
    if (!floats && layout_.format != Format::RGBA16) return gatherBytes(s, offsets, pixels, n);
    for (int c = 0; c < 4; ++c) {
        if (floats) {
            float* to = reinterpret_cast<float*>(pixels) + offsets[c];
            for (int i = 0; i < n; ++i) to[4 * i] = s.plane[c][i];
        } else {
            gather(s.plane[c], reinterpret_cast<std::uint16_t*>(pixels) + offsets[c], samples_, n);
        }
    }
}

} // namespace engine
