// Every compositing and blend mode against its formula.
#include "reference.h"

using namespace reference;

namespace {

/// A component of the result from the premultiplied components and the alphas of source and background.
using Formula = std::function<double(double s, double d, double sa, double da)>;
struct Separable {
    const char* name;
    Formula colour, alpha;
};

std::vector<Separable> separableModes() {
    auto mode = [](std::function<double(double, double)> f) -> Formula {
        return [=](double s, double d, double sa, double da) {
            double cs = sa > 0 ? s / sa : 0, cd = da > 0 ? d / da : 0;
            return s * (1 - da) + d * (1 - sa) + sa * da * f(cs, cd);
        };
    };
    auto hard = [](double s, double d) { return s <= 0.5 ? 2 * s * d : 1 - 2 * (1 - s) * (1 - d); };
    auto same = [](const char* name, Formula f) { return Separable{name, f, f}; };
    Formula over = [](double s, double d, double sa, double) { return s + d * (1 - sa); };
    auto blendMode = [&](const char* name, std::function<double(double, double)> f) {
        return Separable{name, mode(f), over};
    };
    return {
        same("CISourceOverCompositing", over),
        same("CISourceAtopCompositing",
             [](double s, double d, double sa, double da) { return s * da + d * (1 - sa); }),
        same("CISourceInCompositing", [](double s, double, double, double da) { return s * da; }),
        same("CISourceOutCompositing", [](double s, double, double, double da) { return s * (1 - da); }),
        same("CIAdditionCompositing", [](double s, double d, double, double) { return s + d; }),
        same("CIMaximumCompositing", [](double s, double d, double, double) { return std::max(s, d); }),
        same("CIMinimumCompositing", [](double s, double d, double, double) { return std::min(s, d); }),
        same("CIMultiplyCompositing", [](double s, double d, double, double) { return s * d; }),
        blendMode("CIMultiplyBlendMode", [](double s, double d) { return s * d; }),
        blendMode("CIScreenBlendMode", [](double s, double d) { return 1 - (1 - s) * (1 - d); }),
        blendMode("CIHardLightBlendMode", hard),
        blendMode("CIOverlayBlendMode", [=](double s, double d) { return hard(d, s); }),
        blendMode("CISoftLightBlendMode",
                  [](double s, double d) { return std::pow(d, s < 0.5 ? 2 - 2 * s : 1.5 - s); }),
        blendMode("CIDarkenBlendMode", [](double s, double d) { return std::min(s, d); }),
        blendMode("CILightenBlendMode", [](double s, double d) { return std::max(s, d); }),
        blendMode("CIDifferenceBlendMode", [](double s, double d) { return std::abs(s - d); }),
        blendMode("CIExclusionBlendMode", [](double s, double d) { return s + d - 2 * s * d; }),
        blendMode("CIColorDodgeBlendMode",
                  [](double s, double d) { return d == 0   ? 0
                                                  : s >= 1 ? 1
                                                           : std::min(1.0, d / (1 - s)); }),
        blendMode("CIColorBurnBlendMode",
                  [](double s, double d) {
                      return d >= 1 ? 1 : s <= 0 ? 0 : 1 - std::min(1.0, (1 - d) / s);
                  }),
    };
}

/// A mode whose components depend on each other, on straight colours.
using Rgb = std::array<double, 3>;
struct NonSeparable {
    const char* name;
    std::function<Rgb(const Rgb& s, const Rgb& d)> formula;
};

/// Hue in sixths of the circle, saturation and lightness, by the textbook.
struct Hsl {
    double hue, saturation, lightness;
};

Hsl toHsl(const Rgb& c) {
    double top = std::max({c[0], c[1], c[2]}), bottom = std::min({c[0], c[1], c[2]}), range = top - bottom;
    double lightness = (top + bottom) / 2;
    if (range == 0) return {0, 0, lightness};
    double saturation = lightness < 0.5 ? range / (top + bottom) : range / (2 - top - bottom);
    double hue = top == c[0]   ? (c[1] - c[2]) / range
                 : top == c[1] ? 2 + (c[2] - c[0]) / range
                               : 4 + (c[0] - c[1]) / range;
    return {hue < 0 ? hue + 6 : hue, saturation, lightness};
}

Rgb toRgb(const Hsl& c) {
    double top = c.lightness < 0.5 ? c.lightness * (1 + c.saturation)
                                   : c.lightness + c.saturation - c.lightness * c.saturation;
    double bottom = 2 * c.lightness - top;
    auto component = [&](double place) { // in sixths from its own peak
        place = std::fmod(place + 6, 6);
        return place < 1   ? bottom + (top - bottom) * place
               : place < 3 ? top
               : place < 4 ? bottom + (top - bottom) * (4 - place)
                           : bottom;
    };
    return {component(c.hue + 2), component(c.hue), component(c.hue - 2)};
}

/// Parts of HSL from one and the other.
std::vector<NonSeparable> nonSeparableModes() {
    return {
        {"CIHueBlendMode",
         [](const Rgb& s, const Rgb& d) {
             return toRgb({toHsl(s).hue, toHsl(d).saturation, toHsl(d).lightness});
         }},
        {"CISaturationBlendMode",
         [](const Rgb& s, const Rgb& d) {
             return toRgb({toHsl(d).hue, toHsl(s).saturation, toHsl(d).lightness});
         }},
        {"CIColorBlendMode",
         [](const Rgb& s, const Rgb& d) {
             return toRgb({toHsl(s).hue, toHsl(s).saturation, toHsl(d).lightness});
         }},
        {"CILuminosityBlendMode",
         [](const Rgb& s, const Rgb& d) {
             return toRgb({toHsl(d).hue, toHsl(d).saturation, toHsl(s).lightness});
         }},
    };
}

/// Compares a filter with `formula(source pixel, background pixel)`.
class Mode : public testing::Test {
  public:
    using PixelFormula = std::function<Pixel(const Pixel& s, const Pixel& d)>;
    Mode(std::string name, PixelFormula formula) : name_(std::move(name)), formula_(std::move(formula)) {}

    void TestBody() override {
        Picture s = noise(41, 23, 15), d = noise(41, 23, 16);
        Picture expected =
            filled(0, 0, 41, 23, [&](int x, int y) { return formula_(s.get(x, y), d.get(x, y)); });
        Values values{{"inputImage", imageOf(s)}, {"inputBackgroundImage", imageOf(d)}};
        EXPECT_LT(error(filter(name_.c_str(), values), expected), floatError);
    }

  private:
    std::string name_;
    PixelFormula formula_;
};

/// Every mode has a suite of its own.
void registerMode(const char* name, const Mode::PixelFormula& formula) {
    testing::RegisterTest(name, "FollowsItsFormula", nullptr, nullptr, __FILE__, __LINE__,
                          [=]() -> Mode* { return new Mode(name, formula); });
}

[[maybe_unused]] const bool registered = [] {
    for (const Separable& mode : separableModes())
        registerMode(mode.name, [mode](const Pixel& s, const Pixel& d) {
            Pixel out;
            for (int c = 0; c < 4; ++c) out[c] = (c < 3 ? mode.colour : mode.alpha)(s[c], d[c], s[3], d[3]);
            return out;
        });
    for (const NonSeparable& mode : nonSeparableModes())
        registerMode(mode.name, [mode](const Pixel& s, const Pixel& d) {
            auto straight = [](const Pixel& p) {
                double f = p[3] > 0 ? 1 / p[3] : 0;
                return Rgb{p[0] * f, p[1] * f, p[2] * f};
            };
            Rgb mixed = mode.formula(straight(s), straight(d));
            Pixel out;
            for (int c = 0; c < 3; ++c)
                out[c] = s[c] * (1 - d[3]) + d[c] * (1 - s[3]) + s[3] * d[3] * mixed[c];
            out[3] = s[3] + d[3] - s[3] * d[3];
            return out;
        });
    return true;
}();

} // namespace

TEST(AlphaAbove1, IsCodedForAlpha1AndMultiplied) {
    // As Core Image does it: alpha is 2, and bytes are coded for alpha 1, then multiplied.
    Image image = filter("CIAdditionCompositing", {{"inputImage", constant({0.4, 0.1, 0.9, 1})},
                                                   {"inputBackgroundImage", constant({0.2, 0.3, 0.8, 1})}});
    EXPECT_NEAR(rendered(image, 0, 0, 1, 1).get(0, 0)[3], 2, floatError);
    auto expected = [](double a, double b) {
        return std::min(255.0, 255 * 2 * coded((linear(a) + linear(b)) / 2));
    };
    for (Alpha alpha : {Alpha::premultiplied, Alpha::straight, Alpha::opaque}) {
        std::array<std::uint8_t, 4> got;
        PixelLayout layout{1, 1, Format::RGBA8, alpha};
        render(image, {0, 0, 1, 1}, {layout, got.data(), 4}, {0, 0, 1, 1});
        EXPECT_NEAR(got[0], expected(0.4, 0.2), 0.6);
        EXPECT_NEAR(got[1], expected(0.1, 0.3), 0.6);
        EXPECT_NEAR(got[2], 255, 0.6);
        EXPECT_EQ(got[3], 255);
        // Drawn over something, it hides that.
        std::array<std::uint8_t, 4> below{10, 200, 30, 255};
        Options options;
        options.blend = true;
        render(image, {0, 0, 1, 1}, {layout, below.data(), 4}, {0, 0, 1, 1}, options);
        EXPECT_EQ(below, got);
    }
}

TEST(SaturationBlendMode, LeavesGray) {
    Image gray = crop(constant({0.5, 0.5, 0.5, 1}), {0, 0, 1, 1}),
          red = crop(constant({1, 0, 0, 1}), {0, 0, 1, 1});
    Values values{{"inputImage", red}, {"inputBackgroundImage", gray}};
    EXPECT_LT(error(filter("CISaturationBlendMode", values), rendered(gray, 0, 0, 1, 1)), floatError);
}
