// Transfer curves and the conversions between coded values and linear light.
#include "converters.h"

#include <color/vecmath.h>

#include <algorithm>
#include <stdexcept>

namespace color {

namespace {

/// The most pixels that a conversion keeps on the stack.
constexpr std::size_t chunk = 256;

/// Calls work(begin, count) for pieces of at most `chunk` pixels.
template <class F>
void inChunks(std::size_t n, F work) {
    for (std::size_t begin = 0; begin < n; begin += chunk) work(begin, std::min(chunk, n - begin));
}

constexpr int tableSteps = 4095;

float lookUp(const std::vector<float>& table, float x) {
    float position = simd::unit(x) * tableSteps;
    int i = std::min(static_cast<int>(position), tableSteps - 1);
    return simd::mix(table[i], table[i + 1], position - static_cast<float>(i));
}

/// Applies a matrix to three planes; output may be input.
void multiply(const std::array<float, 9>& matrix, const float* const in[3], float* const out[3],
              std::size_t n) {
    const float *r = in[0], *g = in[1], *b = in[2];
    float *x = out[0], *y = out[1], *z = out[2];
    simd::run([=, m = matrix]() SIMD_INLINE {
        SIMD_LOOP
        for (std::size_t i = 0; i < n; ++i) {
            float R = r[i], G = g[i], B = b[i];
            x[i] = m[0] * R + m[1] * G + m[2] * B;
            y[i] = m[3] * R + m[4] * G + m[5] * B;
            z[i] = m[6] * R + m[7] * G + m[8] * B;
        }
    });
}

std::array<float, 9> toFloat(const Matrix& matrix) {
    std::array<float, 9> out;
    std::copy(matrix.begin(), matrix.end(), out.begin());
    return out;
}

/// out[i] = function(in[i])
template <class F>
void map(const float* in, float* out, std::size_t n, F function) {
    simd::run([=]() SIMD_INLINE {
        SIMD_LOOP
        for (std::size_t i = 0; i < n; ++i) out[i] = function(in[i]);
    });
}

} // namespace

// ------------------------------------------------------------------------------------------ curves

Curve Curve::of(const cmsToneCurve* tone) {
    auto eval = [&](float x) { return cmsEvalToneCurveFloat(tone, x); };
    auto matches = [&](auto coded) {
        for (int i = 0; i <= 64; ++i) {
            float x = static_cast<float>(i) / 64;
            if (!(std::abs(coded(eval(x)) - x) <= 1.f / 1024)) return false;
        }
        return true;
    };
    if (matches([](float y) { return y; })) return {};
    if (matches([](float y) { return simd::linearToSrgb(y); })) return {Kind::srgb, 1, {}, {}};
    float gamma = std::log(eval(0.5f)) / std::log(0.5f);
    if (gamma > 0 && matches([=](float y) { return simd::pow(y, 1 / gamma); }))
        return {Kind::gamma, gamma, {}, {}};

    Curve curve{Kind::table, 1, std::vector<float>(tableSteps + 1), std::vector<float>(tableSteps + 1)};
    for (int i = 0; i <= tableSteps; ++i) curve.forward[i] = eval(static_cast<float>(i) / tableSteps);
    // Curves of devices rise; a falling or flat stretch counts as a step.
    int below = 0;
    for (int i = 0; i <= tableSteps; ++i) {
        float root = static_cast<float>(i) / tableSteps, y = root * root;
        while (below < tableSteps - 1 && curve.forward[below + 1] < y) ++below;
        float low = curve.forward[below], high = curve.forward[below + 1];
        float part = high > low ? simd::unit((y - low) / (high - low)) : 0;
        curve.backward[i] = (static_cast<float>(below) + part) / tableSteps;
    }
    return curve;
}

void Curve::decode(const float* in, float* out, std::size_t n) const {
    switch (kind) {
    case Kind::linear:
        std::copy_n(in, in == out ? 0 : n, out);
        break;
    case Kind::srgb:
        map(in, out, n, [](float x) SIMD_INLINE { return simd::srgbToLinear(x); });
        break;
    case Kind::gamma:
        map(in, out, n,
            [p = gamma](float x) SIMD_INLINE { return simd::copySign(simd::pow(simd::abs(x), p), x); });
        break;
    case Kind::table:
        for (std::size_t i = 0; i < n; ++i) out[i] = lookUp(forward, in[i]);
        break;
    }
}

void Curve::encode(const float* in, float* out, std::size_t n) const {
    switch (kind) {
    case Kind::linear:
        std::copy_n(in, in == out ? 0 : n, out);
        break;
    case Kind::srgb:
        map(in, out, n, [](float x) SIMD_INLINE { return simd::linearToSrgb(x); });
        break;
    case Kind::gamma:
        map(in, out, n,
            [p = 1 / gamma](float x) SIMD_INLINE { return simd::copySign(simd::pow(simd::abs(x), p), x); });
        break;
    case Kind::table:
        for (std::size_t i = 0; i < n; ++i) out[i] = lookUp(backward, simd::sqrt(in[i]));
        break;
    }
}

void Curve::encodeClipped(const float* in, float* out, std::size_t n) const {
    if (kind == Kind::srgb) {
        map(in, out, n, [](float x) SIMD_INLINE { return simd::linearToSrgbUnit(x); });
    } else {
        encode(in, out, n);
        map(out, out, n, [](float x) SIMD_INLINE { return simd::unit(x); });
    }
}

// -------------------------------------------------------------------------------------- converters

void Converter::encodeClipped(const float* const rgb[3], float* const* coded, std::size_t n) const {
    encode(rgb, coded, n);
    for (int c = 0; c < components(); ++c)
        map(coded[c], coded[c], n, [](float x) SIMD_INLINE { return simd::unit(x); });
}

void Converter::decode8(const std::uint8_t* pixels, int stride, const int* offsets, float* const rgb[3],
                        std::size_t n) const {
    inChunks(n, [&](std::size_t begin, std::size_t count) {
        float buffer[4][chunk];
        float* coded[4] = {buffer[0], buffer[1], buffer[2], buffer[3]};
        for (int c = 0; c < components(); ++c)
            for (std::size_t i = 0; i < count; ++i)
                coded[c][i] = static_cast<float>(pixels[(begin + i) * stride + offsets[c]]) * (1 / 255.f);
        float* out[3] = {rgb[0] + begin, rgb[1] + begin, rgb[2] + begin};
        decode(coded, out, count);
    });
}

namespace {

using Table = std::array<float, 256>;

Table tableOf(const Curve& curve) {
    Table table;
    for (int i = 0; i < 256; ++i) table[i] = static_cast<float>(i) / 255;
    curve.decode(table.data(), table.data(), table.size());
    return table;
}

class MatrixConverter final : public Converter {
  public:
    MatrixConverter(std::array<Curve, 3> curves, const Matrix& toLinear)
        : Converter(3), curves_(std::move(curves)) {
        auto back = inverse(toLinear);
        if (!back) throw std::invalid_argument("the primaries of a colour space are not independent");
        plain_ = nearlyEqual(toLinear, identityMatrix, 1e-3);
        toLinear_ = toFloat(toLinear);
        fromLinear_ = toFloat(*back);
        for (int c = 0; c < 3; ++c) tables_[c] = tableOf(curves_[c]);
    }

    void decode(const float* const* coded, float* const rgb[3], std::size_t n) const override {
        for (int c = 0; c < 3; ++c) curves_[c].decode(coded[c], rgb[c], n);
        if (!plain_) multiply(toLinear_, rgb, rgb, n);
    }

    void encode(const float* const rgb[3], float* const* coded, std::size_t n) const override {
        encodeWith(&Curve::encode, rgb, coded, n);
    }
    void encodeClipped(const float* const rgb[3], float* const* coded, std::size_t n) const override {
        encodeWith(&Curve::encodeClipped, rgb, coded, n);
    }

    void decode8(const std::uint8_t* pixels, int stride, const int* offsets, float* const rgb[3],
                 std::size_t n) const override {
        for (int c = 0; c < 3; ++c) {
            if (stride == 4)
                lookUp<4>(tables_[c], pixels + offsets[c], 4, rgb[c], n);
            else
                lookUp<0>(tables_[c], pixels + offsets[c], stride, rgb[c], n);
        }
        if (!plain_) multiply(toLinear_, rgb, rgb, n);
    }

    bool isIdentity() const override {
        return plain_ && std::all_of(curves_.begin(), curves_.end(),
                                     [](const Curve& c) { return c.kind == Curve::Kind::linear; });
    }

  private:
    /// One plane at a time, so that everything stays in registers. A `fixed` stride other than 0 is one that
    /// the compiler knows.
    template <int fixed>
    static void lookUp(const Table& table, const std::uint8_t* in, int stride, float* out, std::size_t n) {
        const float* values = table.data();
#pragma clang loop unroll_count(8)
        for (std::size_t i = 0; i < n; ++i) out[i] = values[in[i * (fixed ? fixed : stride)]];
    }

    void encodeWith(void (Curve::*curve)(const float*, float*, std::size_t) const, const float* const rgb[3],
                    float* const* coded, std::size_t n) const {
        const float* const* own = rgb;
        if (!plain_) {
            multiply(fromLinear_, rgb, coded, n);
            own = coded;
        }
        for (int c = 0; c < 3; ++c) (curves_[c].*curve)(own[c], coded[c], n);
    }

    std::array<Curve, 3> curves_;
    std::array<Table, 3> tables_;
    std::array<float, 9> toLinear_, fromLinear_;
    bool plain_;
};

class GrayConverter final : public Converter {
  public:
    explicit GrayConverter(Curve curve) : Converter(1), curve_(std::move(curve)), table_(tableOf(curve_)) {}

    void decode(const float* const* coded, float* const rgb[3], std::size_t n) const override {
        curve_.decode(coded[0], rgb[0], n);
        spread(rgb, n);
    }
    void encode(const float* const rgb[3], float* const* coded, std::size_t n) const override {
        luminance(rgb, coded[0], n);
        curve_.encode(coded[0], coded[0], n);
    }
    void encodeClipped(const float* const rgb[3], float* const* coded, std::size_t n) const override {
        luminance(rgb, coded[0], n);
        curve_.encodeClipped(coded[0], coded[0], n);
    }
    void decode8(const std::uint8_t* pixels, int stride, const int* offsets, float* const rgb[3],
                 std::size_t n) const override {
        for (std::size_t i = 0; i < n; ++i) rgb[0][i] = table_[pixels[i * stride + offsets[0]]];
        spread(rgb, n);
    }

  private:
    static void spread(float* const rgb[3], std::size_t n) {
        std::copy_n(rgb[0], n, rgb[1]);
        std::copy_n(rgb[0], n, rgb[2]);
    }
    static void luminance(const float* const rgb[3], float* y, std::size_t n) {
        const float *r = rgb[0], *g = rgb[1], *b = rgb[2];
        simd::run([=]() SIMD_INLINE {
            SIMD_LOOP
            for (std::size_t i = 0; i < n; ++i) y[i] = 0.2126f * r[i] + 0.7152f * g[i] + 0.0722f * b[i];
        });
    }

    Curve curve_;
    Table table_;
};

/// Red, as an sRGB number, is the light that cyan and black let through, and so on. Black takes all the gray
/// that the three inks share.
class DeviceCMYKConverter final : public Converter {
  public:
    DeviceCMYKConverter() : Converter(4), curve_{Curve::Kind::srgb, 1, {}, {}} {}

    void decode(const float* const* coded, float* const rgb[3], std::size_t n) const override {
        inChunks(n, [&](std::size_t begin, std::size_t count) {
            float light[chunk];
            for (std::size_t i = 0; i < count; ++i) light[i] = 1 - coded[3][begin + i];
            for (int c = 0; c < 3; ++c) {
                float* out = rgb[c] + begin;
                for (std::size_t i = 0; i < count; ++i) out[i] = (1 - coded[c][begin + i]) * light[i];
                curve_.decode(out, out, count);
            }
        });
    }
    void encode(const float* const rgb[3], float* const* coded, std::size_t n) const override {
        for (int c = 0; c < 3; ++c) curve_.encodeClipped(rgb[c], coded[c], n);
        float *r = coded[0], *g = coded[1], *b = coded[2], *k = coded[3];
        for (std::size_t i = 0; i < n; ++i) {
            float light = std::max({r[i], g[i], b[i]});
            k[i] = 1 - light;
            for (float* ink : {r, g, b}) ink[i] = light > 0 ? 1 - ink[i] / light : 0;
        }
    }

  private:
    Curve curve_;
};

/// Any profile, by lcms2's floating-point transforms. Without a cache a transform has no changing state, so
/// threads can share it.
class ProfileConverter final : public Converter {
  public:
    struct Delete {
        void operator()(void* transform) const { cmsDeleteTransform(transform); }
    };
    using Transform = std::unique_ptr<void, Delete>;

    ProfileConverter(int components, float scale, Transform decode, Transform encode)
        : Converter(components), scale_(scale), decode_(std::move(decode)), encode_(std::move(encode)) {}

    void decode(const float* const* coded, float* const rgb[3], std::size_t n) const override {
        run(decode_.get(), coded, components(), scale_, rgb, 3, 1, n);
    }
    void encode(const float* const rgb[3], float* const* coded, std::size_t n) const override {
        run(encode_.get(), rgb, 3, 1, coded, components(), 1 / scale_, n);
    }
    void encodeClipped(const float* const rgb[3], float* const* coded, std::size_t n) const override {
        // lcms2 limits device values by itself, and Lab does not go from 0 to 1.
        encode(rgb, coded, n);
    }

  private:
    static void run(cmsHTRANSFORM transform, const float* const* in, int inputs, float inScale,
                    float* const* out, int outputs, float outScale, std::size_t n) {
        inChunks(n, [&](std::size_t begin, std::size_t count) {
            float from[4 * chunk], to[4 * chunk];
            for (int c = 0; c < inputs; ++c)
                for (std::size_t i = 0; i < count; ++i) {
                    float value = in[c][begin + i];
                    from[i * inputs + c] = std::isfinite(value) ? value * inScale : 0;
                }
            cmsDoTransform(transform, from, to, static_cast<cmsUInt32Number>(count));
            for (int c = 0; c < outputs; ++c)
                for (std::size_t i = 0; i < count; ++i) out[c][begin + i] = to[i * outputs + c] * outScale;
        });
    }

    /// Full scale in lcms2, where inks go to 100.
    float scale_;
    Transform decode_, encode_;
};

} // namespace

ConverterPtr makeMatrixConverter(std::array<Curve, 3> curves, const Matrix& toLinear) {
    return std::make_shared<MatrixConverter>(std::move(curves), toLinear);
}

ConverterPtr makeGrayConverter(Curve curve) { return std::make_shared<GrayConverter>(std::move(curve)); }

ConverterPtr makeDeviceCMYKConverter() { return std::make_shared<DeviceCMYKConverter>(); }

ConverterPtr makeProfileConverter(cmsHPROFILE profile, Model model) {
    cmsUInt32Number type = 0;
    switch (model) {
    case Model::gray:
        type = TYPE_GRAY_FLT;
        break;
    case Model::rgb:
        type = TYPE_RGB_FLT;
        break;
    case Model::cmyk:
        type = TYPE_CMYK_FLT;
        break;
    case Model::lab:
        type = TYPE_Lab_FLT;
        break;
    }
    auto hub = ColorSpace::linearSRGB();
    const auto& bytes = hub->iccData();
    cmsHPROFILE linear = cmsOpenProfileFromMem(bytes.data(), static_cast<cmsUInt32Number>(bytes.size()));
    if (!linear) throw std::bad_alloc();
    auto make = [](cmsHPROFILE from, cmsUInt32Number fromType, cmsHPROFILE to, cmsUInt32Number toType) {
        return ProfileConverter::Transform(
            cmsCreateTransform(from, fromType, to, toType, INTENT_RELATIVE_COLORIMETRIC,
                               cmsFLAGS_NOCACHE | cmsFLAGS_BLACKPOINTCOMPENSATION));
    };
    auto decode = make(profile, type, linear, TYPE_RGB_FLT);
    auto encode = make(linear, TYPE_RGB_FLT, profile, type);
    cmsCloseProfile(linear);
    if (!decode || !encode) return nullptr;
    int components = model == Model::gray ? 1 : model == Model::cmyk ? 4 : 3;
    return std::make_shared<ProfileConverter>(components, model == Model::cmyk ? 100.f : 1.f,
                                              std::move(decode), std::move(encode));
}

} // namespace color
