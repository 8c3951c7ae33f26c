// Rows of every pixel format to and from the engine's planes.
#include "codec.h"

#include <color/vecmath.h>

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

template <class T>
void gather(const float* from, float scale, T* out, int stride, int n) {
    simd::run([=]() SIMD_INLINE {
        SIMD_LOOP
        for (int i = 0; i < n; ++i)
            out[i * stride] = static_cast<T>(static_cast<int>(simd::unit(from[i]) * scale + 0.5f));
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

bool allOne(const float* p, int n) {
    return std::all_of(p, p + n, [](float v) { return v == 1; });
}

} // namespace

void Codec::decode(const std::uint8_t* pixels, int n, const Span& out) const {
    float* alpha = out.plane[3];
    auto read = [&](int offset, float* to) {
        if (layout_.format == Format::RGBAf)
            spreadFinite(reinterpret_cast<const float*>(pixels) + offset, samples_, to, n);
        else if (layout_.format == Format::RGBA16)
            spread(reinterpret_cast<const std::uint16_t*>(pixels) + offset, samples_, 1 / 65535.f, to, n);
        else
            spread(pixels + offset, samples_, 1 / 255.f, to, n);
    };
    if (alpha_ >= 0)
        read(alpha_, alpha);
    else
        std::fill_n(alpha, n, 1.f);

    bool full = alpha_ < 0 || allOne(alpha, n);
    bool bytes = layout_.format != Format::RGBA16 && layout_.format != Format::RGBAf;
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
    // A target without alpha shows the image on black, and that is what premultiplied colours are.
    bool full = alpha_ < 0 || allOne(alpha, n);
    if (!full && (space_ || layout_.alpha == Alpha::straight))
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
    if (!full && space_ && layout_.alpha == Alpha::premultiplied)
        for (int c = 0; c < 3; ++c) multiply(s.plane[c], alpha, n);
    if (alpha_ < 0) std::fill_n(alpha, n, 1.f);

    auto write = [&](int offset, const float* from) {
        if (floats) {
            float* to = reinterpret_cast<float*>(pixels) + offset;
            for (int i = 0; i < n; ++i) to[4 * i] = from[i];
        } else if (layout_.format == Format::RGBA16) {
            gather(from, 65535, reinterpret_cast<std::uint16_t*>(pixels) + offset, samples_, n);
        } else {
            gather(from, 255, pixels + offset, samples_, n);
        }
    };
    if (layout_.format == Format::Gray8) {
        write(0, s.plane[0]);
        return;
    }
    for (int c = 0; c < 3; ++c) write(colour_[c], s.plane[c]);
    write(alpha_ >= 0 ? alpha_ : layout_.format == Format::ARGB8 ? 0 : 3, alpha);
}

} // namespace engine
