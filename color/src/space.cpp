// The well-known colour spaces, those made from ICC profiles, and whole rows of pixels between any two.
#include "converters.h"

#include <algorithm>
#include <stdexcept>

namespace color {

struct ColorSpace::Parts {
    Model model;
    std::string name;
    std::vector<std::uint8_t> icc;
    ConverterPtr converter;
    std::array<double, 4> labRange = {-128, 127, -128, 127};
};

ColorSpace::ColorSpace(Parts parts)
    : model_(parts.model), name_(std::move(parts.name)), icc_(std::move(parts.icc)), range_(parts.labRange),
      converter_(std::move(parts.converter)) {}

namespace {

struct CloseProfile {
    void operator()(void* profile) const { cmsCloseProfile(profile); }
};
using Profile = std::unique_ptr<void, CloseProfile>;

struct FreeCurve {
    void operator()(cmsToneCurve* curve) const { cmsFreeToneCurve(curve); }
};
using Tone = std::unique_ptr<cmsToneCurve, FreeCurve>;

Tone gammaTone(double gamma) { return Tone(cmsBuildGamma(nullptr, gamma)); }

Tone srgbTone() {
    const double parameters[] = {2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};
    return Tone(cmsBuildParametricToneCurve(nullptr, 4, parameters));
}

constexpr cmsCIExyY d65 = {0.3127, 0.3290, 1};
constexpr cmsCIExyYTRIPLE srgbPrimaries = {{0.64, 0.33, 1}, {0.30, 0.60, 1}, {0.15, 0.06, 1}};
constexpr cmsCIExyYTRIPLE adobePrimaries = {{0.64, 0.33, 1}, {0.21, 0.71, 1}, {0.15, 0.06, 1}};

Profile rgbProfile(const cmsCIExyY& white, const cmsCIExyYTRIPLE& primaries,
                   const std::array<Tone, 3>& tones) {
    cmsToneCurve* curves[] = {tones[0].get(), tones[1].get(), tones[2].get()};
    return Profile(cmsCreateRGBProfile(&white, &primaries, curves));
}

std::vector<std::uint8_t> save(cmsHPROFILE profile) {
    cmsUInt32Number size = 0;
    if (!cmsSaveProfileToMem(profile, nullptr, &size)) return {};
    std::vector<std::uint8_t> bytes(size);
    if (!cmsSaveProfileToMem(profile, bytes.data(), &size)) return {};
    return bytes;
}

std::string describe(cmsHPROFILE profile) {
    char text[256] = "";
    cmsGetProfileInfoASCII(profile, cmsInfoDescription, "en", "US", text, sizeof text);
    return text;
}

/// The columns of the profile's colorants: device linear light to D50 tristimulus values.
std::optional<Matrix> colorants(cmsHPROFILE profile) {
    Matrix m;
    const cmsTagSignature tags[] = {cmsSigRedColorantTag, cmsSigGreenColorantTag, cmsSigBlueColorantTag};
    for (int c = 0; c < 3; ++c) {
        auto* xyz = static_cast<const cmsCIEXYZ*>(cmsReadTag(profile, tags[c]));
        if (!xyz) return {};
        m[c] = xyz->X;
        m[3 + c] = xyz->Y;
        m[6 + c] = xyz->Z;
    }
    return m;
}

/// From D50 tristimulus values to the hub, taken from the hub's own profile.
const Matrix& hubFromXYZ() {
    static const Matrix matrix = [] {
        std::array<Tone, 3> tones = {gammaTone(1), gammaTone(1), gammaTone(1)};
        auto columns = colorants(rgbProfile(d65, srgbPrimaries, tones).get());
        return *inverse(*columns);
    }();
    return matrix;
}

std::optional<Curve> readCurve(cmsHPROFILE profile, cmsTagSignature tag) {
    auto* tone = static_cast<const cmsToneCurve*>(cmsReadTag(profile, tag));
    if (!tone) return {};
    return Curve::of(tone);
}

/// Null when the profile cannot be used.
ConverterPtr converterFor(cmsHPROFILE profile, Model model) {
    bool hasTables = cmsIsTag(profile, cmsSigAToB0Tag) || cmsIsTag(profile, cmsSigAToB1Tag);
    if (model == Model::gray && !hasTables) {
        auto curve = readCurve(profile, cmsSigGrayTRCTag);
        return curve ? makeGrayConverter(std::move(*curve)) : nullptr;
    }
    if (model == Model::rgb && cmsIsMatrixShaper(profile) && !hasTables) {
        auto columns = colorants(profile);
        auto red = readCurve(profile, cmsSigRedTRCTag), green = readCurve(profile, cmsSigGreenTRCTag),
             blue = readCurve(profile, cmsSigBlueTRCTag);
        if (!columns || !red || !green || !blue || !inverse(*columns)) return nullptr;
        return makeMatrixConverter({std::move(*red), std::move(*green), std::move(*blue)},
                                   hubFromXYZ() * *columns);
    }
    return makeProfileConverter(profile, model);
}

ColorSpacePtr fromProfile(cmsHPROFILE profile, Model model, std::vector<std::uint8_t> bytes,
                          std::string name) {
    auto converter = converterFor(profile, model);
    if (!converter) return nullptr;
    return std::make_shared<ColorSpace>(
        ColorSpace::Parts{model, std::move(name), std::move(bytes), std::move(converter)});
}

/// A space for a profile made here, which can fail only for lack of memory.
ColorSpacePtr fromOwnProfile(const Profile& profile, Model model, std::string name) {
    if (!profile) throw std::bad_alloc();
    auto space = fromProfile(profile.get(), model, save(profile.get()), std::move(name));
    if (!space) throw std::bad_alloc();
    return space;
}

ColorSpacePtr rgbSpace(const cmsCIExyYTRIPLE& primaries, Tone (*tone)(), std::string name) {
    return fromOwnProfile(rgbProfile(d65, primaries, {tone(), tone(), tone()}), Model::rgb, std::move(name));
}

Profile grayProfile(const cmsCIExyY& white, double gamma) {
    return Profile(cmsCreateGrayProfile(&white, gammaTone(gamma).get()));
}

void requireWhite(const ColorSpace::Triple& white) {
    bool finite =
        std::all_of(white.begin(), white.end(), [](double v) { return std::isfinite(v) && v >= 0; });
    if (!finite || !(white[1] > 0))
        throw std::invalid_argument("a white point needs finite values and Y above 0");
}

void requireGamma(double gamma) {
    if (!std::isfinite(gamma) || gamma <= 0) throw std::invalid_argument("a gamma has to be positive");
}

cmsCIExyY toxyY(double x, double y, double z) {
    double sum = x + y + z;
    if (!(std::abs(sum) > 1e-9)) throw std::invalid_argument("a primary of a colour space is black");
    return {x / sum, y / sum, 1};
}

} // namespace

ColorSpacePtr ColorSpace::sRGB() {
    static const auto space = rgbSpace(srgbPrimaries, srgbTone, "sRGB IEC61966-2.1");
    return space;
}

ColorSpacePtr ColorSpace::linearSRGB() {
    static const auto space = rgbSpace(
        srgbPrimaries, [] { return gammaTone(1); }, "Linear sRGB");
    return space;
}

ColorSpacePtr ColorSpace::deviceRGB() {
    static const auto space =
        std::make_shared<ColorSpace>(Parts{Model::rgb, "Device RGB", sRGB()->icc_, sRGB()->converter_});
    return space;
}

ColorSpacePtr ColorSpace::adobeRGB() {
    // The published exponent is 2 + 51/256.
    static const auto space = rgbSpace(
        adobePrimaries, [] { return gammaTone(2.19921875); }, "Adobe RGB (1998)");
    return space;
}

ColorSpacePtr ColorSpace::deviceGray() {
    static const auto space =
        fromOwnProfile(grayProfile(*cmsD50_xyY(), 2.2), Model::gray, "Generic Gray Gamma 2.2");
    return space;
}

ColorSpacePtr ColorSpace::linearGray() {
    static const auto space = fromOwnProfile(grayProfile(*cmsD50_xyY(), 1), Model::gray, "Linear Gray");
    return space;
}

ColorSpacePtr ColorSpace::deviceCMYK() {
    static const auto space =
        std::make_shared<ColorSpace>(Parts{Model::cmyk, "Device CMYK", {}, makeDeviceCMYKConverter()});
    return space;
}

ColorSpacePtr ColorSpace::calibratedRGB(const Triple& white, const Triple&, const Triple& gamma,
                                        const std::array<double, 9>& matrix) {
    requireWhite(white);
    for (double g : gamma) requireGamma(g);
    if (!std::all_of(matrix.begin(), matrix.end(), [](double v) { return std::isfinite(v); }) ||
        !inverse(matrix))
        throw std::invalid_argument("the matrix of a colour space has to be finite and invertible");
    cmsCIExyYTRIPLE primaries = {toxyY(matrix[0], matrix[1], matrix[2]),
                                 toxyY(matrix[3], matrix[4], matrix[5]),
                                 toxyY(matrix[6], matrix[7], matrix[8])};
    std::array<Tone, 3> tones = {gammaTone(gamma[0]), gammaTone(gamma[1]), gammaTone(gamma[2])};
    auto profile = rgbProfile(toxyY(white[0], white[1], white[2]), primaries, tones);
    if (!profile) throw std::invalid_argument("the matrix of a colour space does not reach its white");
    return fromOwnProfile(profile, Model::rgb, "Calibrated RGB");
}

ColorSpacePtr ColorSpace::calibratedGray(const Triple& white, const Triple&, double gamma) {
    requireWhite(white);
    requireGamma(gamma);
    return fromOwnProfile(grayProfile(toxyY(white[0], white[1], white[2]), gamma), Model::gray,
                          "Calibrated Gray");
}

ColorSpacePtr ColorSpace::lab(const Triple& white, const Triple&, const std::array<double, 4>& range) {
    requireWhite(white);
    if (!(range[0] < range[1] && range[2] < range[3]) ||
        !std::all_of(range.begin(), range.end(), [](double v) { return std::isfinite(v); }))
        throw std::invalid_argument("the range of a Lab space has to be finite and ascending");
    // Lab numbers are relative to their white, and so is the profile connection space.
    Profile profile(cmsCreateLab4Profile(nullptr));
    if (!profile) throw std::bad_alloc();
    auto converter = makeProfileConverter(profile.get(), Model::lab);
    if (!converter) throw std::bad_alloc();
    return std::make_shared<ColorSpace>(Parts{Model::lab, "Lab", {}, std::move(converter), range});
}

ColorSpacePtr ColorSpace::fromICC(std::span<const std::uint8_t> bytes) {
    Profile profile(cmsOpenProfileFromMem(bytes.data(), static_cast<cmsUInt32Number>(bytes.size())));
    if (!profile) return nullptr;
    Model model;
    switch (cmsGetColorSpace(profile.get())) {
    case cmsSigGrayData:
        model = Model::gray;
        break;
    case cmsSigRgbData:
        model = Model::rgb;
        break;
    case cmsSigCmykData:
        model = Model::cmyk;
        break;
    case cmsSigLabData:
        model = Model::lab;
        break;
    default:
        return nullptr;
    }
    return fromProfile(profile.get(), model, {bytes.begin(), bytes.end()}, describe(profile.get()));
}

std::array<double, 2> ColorSpace::range(int component) const {
    if (model_ != Model::lab) return {0, 1};
    if (component == 0) return {0, 100};
    return component == 1 ? std::array{range_[0], range_[1]} : std::array{range_[2], range_[3]};
}

bool ColorSpace::sameAs(const ColorSpace& other) const {
    return this == &other || (model_ == other.model_ && icc_ == other.icc_ && range_ == other.range_);
}

ColorSpace::Triple ColorSpace::toLinear(std::span<const double> coded) const {
    if (static_cast<int>(coded.size()) < components())
        throw std::invalid_argument("a colour has fewer components than its space");
    float in[4], out[3];
    for (int c = 0; c < components(); ++c) in[c] = static_cast<float>(coded[c]);
    const float* planes[4] = {in, in + 1, in + 2, in + 3};
    float* rgb[3] = {out, out + 1, out + 2};
    converter_->decode(planes, rgb, 1);
    return {out[0], out[1], out[2]};
}

std::vector<double> ColorSpace::fromLinear(const Triple& color) const {
    float in[3] = {static_cast<float>(color[0]), static_cast<float>(color[1]), static_cast<float>(color[2])};
    float out[4];
    const float* rgb[3] = {in, in + 1, in + 2};
    float* planes[4] = {out, out + 1, out + 2, out + 3};
    converter_->encode(rgb, planes, 1);
    return {out, out + components()};
}

// ------------------------------------------------------------------------------ interleaved pixels

namespace {

/// Float value of a stored sample, as (stored + bias) * factor.
struct Scale {
    float factor = 1, bias = 0;
};

Scale scaleFor(const ColorSpace& space, Sample sample, int component) {
    if (sample == Sample::f32) return {};
    float top = sample == Sample::u8 ? 255.f : 65535.f;
    if (space.model() != Model::lab) return {1 / top, 0};
    // ICC version 2: 16-bit L goes to 0xff00, a and b are centred at 0x8000; 8-bit a and b at 128.
    if (component == 0) return {100 / (sample == Sample::u8 ? 255.f : 65280.f), 0};
    return sample == Sample::u8 ? Scale{1, -128} : Scale{1 / 256.f, -32768};
}

template <class T>
void load(const T* pixels, const Layout& layout, int c, Scale scale, float* out, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i)
        out[i] =
            (static_cast<float>(pixels[i * layout.stride + layout.offsets[c]]) + scale.bias) * scale.factor;
}

template <class T>
void store(const float* in, Scale scale, T* pixels, const Layout& layout, int c, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        float value = in[i] / scale.factor - scale.bias;
        T& sample = pixels[i * layout.stride + layout.offsets[c]];
        if constexpr (std::is_same_v<T, float>) {
            sample = value;
        } else {
            constexpr float top = std::numeric_limits<T>::max();
            sample = static_cast<T>((value > 0 ? std::min(value, top) : 0.f) + 0.5f);
        }
    }
}

std::size_t sampleSize(Sample sample) { return sample == Sample::u8 ? 1 : sample == Sample::u16 ? 2 : 4; }

} // namespace

void convert(const void* from, const Layout& fromLayout, const ColorSpace& fromSpace, void* to,
             const Layout& toLayout, const ColorSpace& toSpace, std::size_t n) {
    constexpr std::size_t chunk = 256;
    float buffer[4][chunk];
    float* planes[4] = {buffer[0], buffer[1], buffer[2], buffer[3]};
    auto* source = static_cast<const std::uint8_t*>(from);
    auto* target = static_cast<std::uint8_t*>(to);
    for (std::size_t begin = 0; begin < n; begin += chunk) {
        std::size_t count = std::min(chunk, n - begin);
        const void* in = source + begin * fromLayout.stride * sampleSize(fromLayout.sample);
        for (int c = 0; c < fromSpace.components(); ++c) {
            Scale scale = scaleFor(fromSpace, fromLayout.sample, c);
            switch (fromLayout.sample) {
            case Sample::u8:
                load(static_cast<const std::uint8_t*>(in), fromLayout, c, scale, planes[c], count);
                break;
            case Sample::u16:
                load(static_cast<const std::uint16_t*>(in), fromLayout, c, scale, planes[c], count);
                break;
            case Sample::f32:
                load(static_cast<const float*>(in), fromLayout, c, scale, planes[c], count);
                break;
            }
        }
        fromSpace.converter().decode(planes, planes, count);
        if (toLayout.sample == Sample::f32)
            toSpace.converter().encode(planes, planes, count);
        else
            toSpace.converter().encodeClipped(planes, planes, count);
        void* out = target + begin * toLayout.stride * sampleSize(toLayout.sample);
        for (int c = 0; c < toSpace.components(); ++c) {
            Scale scale = scaleFor(toSpace, toLayout.sample, c);
            switch (toLayout.sample) {
            case Sample::u8:
                store(planes[c], scale, static_cast<std::uint8_t*>(out), toLayout, c, count);
                break;
            case Sample::u16:
                store(planes[c], scale, static_cast<std::uint16_t*>(out), toLayout, c, count);
                break;
            case Sample::f32:
                store(planes[c], scale, static_cast<float*>(out), toLayout, c, count);
                break;
            }
        }
    }
}

} // namespace color
