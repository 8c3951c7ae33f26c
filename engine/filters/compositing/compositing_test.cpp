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
                  [](double s, double d) {
                      double bright = d <= 0.25 ? ((16 * d - 12) * d + 4) * d : std::sqrt(d);
                      return s <= 0.5 ? d - (1 - 2 * s) * d * (1 - d) : d + (2 * s - 1) * (bright - d);
                  }),
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

/// By the formulas of the PDF Reference.
std::vector<NonSeparable> nonSeparableModes() {
    auto lum = [](const Rgb& c) { return 0.3 * c[0] + 0.59 * c[1] + 0.11 * c[2]; };
    auto sat = [](const Rgb& c) {
        return *std::max_element(c.begin(), c.end()) - *std::min_element(c.begin(), c.end());
    };
    auto setLum = [=](Rgb c, double l) {
        double d = l - lum(c);
        for (double& v : c) v += d;
        double y = lum(c), n = *std::min_element(c.begin(), c.end()),
               x = *std::max_element(c.begin(), c.end());
        for (double& v : c) {
            if (n < 0) v = y + (v - y) * y / (y - n);
            if (x > 1) v = y + (v - y) * (1 - y) / (x - y);
        }
        return c;
    };
    auto setSat = [](const Rgb& c, double s) {
        std::array<int, 3> order{0, 1, 2};
        std::sort(order.begin(), order.end(), [&](int i, int k) { return c[i] < c[k]; });
        Rgb out{};
        double low = c[order[0]], middle = c[order[1]], high = c[order[2]];
        if (high > low) {
            out[order[1]] = (middle - low) * s / (high - low);
            out[order[2]] = s;
        }
        return out;
    };
    return {
        {"CIHueBlendMode", [=](const Rgb& s, const Rgb& d) { return setLum(setSat(s, sat(d)), lum(d)); }},
        {"CISaturationBlendMode",
         [=](const Rgb& s, const Rgb& d) { return setLum(setSat(d, sat(s)), lum(d)); }},
        {"CIColorBlendMode", [=](const Rgb& s, const Rgb& d) { return setLum(s, lum(d)); }},
        {"CILuminosityBlendMode", [=](const Rgb& s, const Rgb& d) { return setLum(d, lum(s)); }},
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
