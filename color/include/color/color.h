// Colour spaces and conversion of pixels to and from linear light.
//
// The hub of every conversion is *linear light*: RGB with the primaries and white of sRGB, not gamma
// coded, unbounded (a colour outside the sRGB gamut has components below 0 or above 1). Nothing here deals
// with alpha: colours go in and come out straight (not premultiplied). Ranges of a component's coded values:
//   gray, rgb, cmyk    0..1 in float; 0..255 and 0..65535 in the integer types
//   lab                L 0..100, a and b in -128..127 in float; as in ICC version 2 files in the integer
//   types
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#define COLOR_API __attribute__((visibility("default")))

namespace color {

enum class Model { gray, rgb, cmyk, lab };

class ColorSpace;
using ColorSpacePtr = std::shared_ptr<const ColorSpace>;
class Converter;
using ConverterPtr = std::shared_ptr<const Converter>;

/// An immutable colour space. Shared, thread-safe; the well-known ones are one object each.
class COLOR_API ColorSpace {
  public:
    using Triple = std::array<double, 3>;

    /// IEC 61966-2-1.
    static ColorSpacePtr sRGB();
    /// sRGB's primaries without its curve: the working space.
    static ColorSpacePtr linearSRGB();
    /// "Device" RGB: sRGB under a name of its own.
    static ColorSpacePtr deviceRGB();
    /// Gray with gamma 2.2 and a D50 white.
    static ColorSpacePtr deviceGray();
    /// Gray in linear light.
    static ColorSpacePtr linearGray();
    /// Device CMYK by the plain product rule r = (1-c)(1-k); it has no ICC data.
    static ColorSpacePtr deviceCMYK();
    /// Adobe RGB (1998).
    static ColorSpacePtr adobeRGB();

    /// RGB by tristimulus values. `matrix` holds XYZ of red, then green, then blue (as in PDF's CalRGB),
    /// relative to `white`. Throws std::invalid_argument when a value is not finite, white's Y is not
    /// positive, a gamma is not positive or the matrix cannot be inverted. `black` is accepted and unused, as
    /// in PDF viewers generally.
    static ColorSpacePtr calibratedRGB(const Triple& white, const Triple& black, const Triple& gamma,
                                       const std::array<double, 9>& matrix);
    /// Gray by white point and gamma (PDF's CalGray). Throws std::invalid_argument as above.
    static ColorSpacePtr calibratedGray(const Triple& white, const Triple& black, double gamma);
    /// CIE L*a*b* relative to `white`. `range` is amin, amax, bmin, bmax. Throws std::invalid_argument.
    static ColorSpacePtr lab(const Triple& white, const Triple& black, const std::array<double, 4>& range);
    /// From the bytes of an ICC profile. Null when the bytes are no usable profile of a gray, RGB, CMYK
    /// or Lab device.
    static ColorSpacePtr fromICC(std::span<const std::uint8_t> bytes);

    Model model() const { return model_; }
    /// Number of colour components: 1, 3 or 4.
    int components() const { return model_ == Model::gray ? 1 : model_ == Model::cmyk ? 4 : 3; }
    const std::string& name() const { return name_; }
    /// ICC profile of this space; empty where it has none (device CMYK, Lab).
    const std::vector<std::uint8_t>& iccData() const { return icc_; }
    /// Lowest and highest value of a component in float.
    std::array<double, 2> range(int component) const;
    /// Same model and same meaning of the numbers; names are not compared.
    bool sameAs(const ColorSpace& other) const;
    /// The conversion between this space and linear light, made on first use. Never null.
    const Converter& converter() const { return *converter_; }

    /// One colour, `components()` coded values, to linear light.
    Triple toLinear(std::span<const double> coded) const;
    /// One colour from linear light; the result has `components()` values.
    std::vector<double> fromLinear(const Triple& rgb) const;

    struct Parts;
    explicit ColorSpace(Parts parts);

  private:
    Model model_;
    std::string name_;
    std::vector<std::uint8_t> icc_;
    std::array<double, 4> range_;
    ConverterPtr converter_;
};

/// Conversion of spans of pixels between one space's coded values and linear light. Immutable and
/// thread-safe. Planes are arrays of n floats, one per component; output planes may be the input planes.
class COLOR_API Converter {
  public:
    virtual ~Converter() = default;

    /// Coded planes (`components()` of them) to linear light.
    virtual void decode(const float* const* coded, float* const rgb[3], std::size_t n) const = 0;
    /// Linear light to coded planes. RGB spaces with a matrix and curves keep the extended range (the curve
    /// is continued as an odd function below 0); others clip to their gamut.
    virtual void encode(const float* const rgb[3], float* const* coded, std::size_t n) const = 0;
    /// encode(), clipped to the range of the integer types; the fast way to 8 and 16 bits.
    virtual void encodeClipped(const float* const rgb[3], float* const* coded, std::size_t n) const;
    /// 8-bit pixels: component k of pixel i is pixels[i * stride + offsets[k]]. For curve-and-matrix spaces
    /// this is a table look-up and exact.
    virtual void decode8(const std::uint8_t* pixels, int stride, const int* offsets, float* const rgb[3],
                         std::size_t n) const;
    /// Whether coded values are linear light, so that both conversions copy.
    virtual bool isIdentity() const { return false; }

    int components() const { return components_; }

  protected:
    explicit Converter(int components) : components_(components) {}

  private:
    int components_;
};

enum class Sample { u8, u16, f32 };

/// Where the colour components of interleaved pixels lie, counted in samples.
struct Layout {
    Sample sample = Sample::u8;
    int stride = 4;
    std::array<int, 4> offsets = {0, 1, 2, 3};
};

/// Interleaved pixels of any space to interleaved pixels of any other, n of them, through linear light.
/// Other samples of `to` (alpha, padding) are left as they are. Integer results are
/// rounded and clipped. Source and target may be the same memory when their layouts are equal.
COLOR_API void convert(const void* from, const Layout& fromLayout, const ColorSpace& fromSpace, void* to,
                       const Layout& toLayout, const ColorSpace& toSpace, std::size_t n);

} // namespace color
