// Colour spaces, conversions and the elementary functions, with both instruction sets.
#include <color/color.h>
#include <color/simd.h>
#include <color/vecmath.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

using namespace color;

namespace {

double srgbDecode(double c) { return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4); }
double srgbEncode(double x) { return x <= 0.0031308 ? x * 12.92 : 1.055 * std::pow(x, 1 / 2.4) - 0.055; }

/// Every test below holds for both instruction sets.
class ColorTest : public testing::TestWithParam<simd::Set> {
  protected:
    void SetUp() override {
        if (!simd::select(GetParam())) GTEST_SKIP() << "this processor has no AVX2";
    }
    void TearDown() override { simd::select(simd::Set::avx2); }
};
INSTANTIATE_TEST_SUITE_P(Sets, ColorTest, testing::Values(simd::Set::sse2, simd::Set::avx2));

TEST_P(ColorTest, MathIsAccurate) {
    for (float x = 1e-6f; x < 1e4f; x *= 1.0371f) {
        EXPECT_NEAR(simd::log2(x), std::log2(double(x)), 2e-6) << x;
        EXPECT_NEAR(simd::pow(x, 2.2f) / std::pow(double(x), 2.2f), 1, 1e-5) << x;
    }
    for (float x = -40; x < 40; x += 0.173f) {
        EXPECT_NEAR(simd::exp2(x) / std::exp2(double(x)), 1, 1e-6) << x;
        EXPECT_NEAR(simd::sin(x), std::sin(double(x)), 2e-6) << x;
        EXPECT_NEAR(simd::cos(x), std::cos(double(x)), 6e-6) << x;
        EXPECT_EQ(simd::floor(x), std::floor(x));
    }
}

TEST_P(ColorTest, MathSurvivesOddNumbers) {
    float nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
    EXPECT_EQ(simd::unit(nan), 0);
    EXPECT_EQ(simd::clamp(nan, 3, 4), 3);
    EXPECT_EQ(simd::floorInt(nan), -1073741824);
    EXPECT_EQ(simd::floorInt(inf), 1073741824);
    EXPECT_EQ(simd::pow(-2, 2), 0);
    EXPECT_EQ(simd::linearToSrgbUnit(inf), simd::linearToSrgbUnit(1));
    EXPECT_EQ(simd::linearToSrgbUnit(nan), 0);
}

TEST_P(ColorTest, SRGBDecodesBytesExactly) {
    std::vector<std::uint8_t> pixels(256 * 4);
    for (int i = 0; i < 256; ++i) std::memset(&pixels[i * 4], i, 4);
    const int offsets[] = {2, 1, 0};
    std::vector<float> r(256), g(256), b(256);
    float* rgb[] = {r.data(), g.data(), b.data()};
    ColorSpace::sRGB()->converter().decode8(pixels.data(), 4, offsets, rgb, 256);
    for (int i = 0; i < 256; ++i) {
        EXPECT_NEAR(r[i], srgbDecode(i / 255.0), 1e-6);
        EXPECT_EQ(r[i], b[i]);
    }
}

TEST_P(ColorTest, SRGBEncodesWithinHalfAByteStep) {
    constexpr int n = 10000;
    std::vector<float> x(n), y(n);
    for (int i = 0; i < n; ++i) x[i] = std::pow(float(i) / (n - 1), 2.f);
    const float* in[] = {x.data(), x.data(), x.data()};
    float* out[] = {y.data(), y.data(), y.data()};
    ColorSpace::sRGB()->converter().encodeClipped(in, out, n);
    for (int i = 0; i < n; ++i) ASSERT_NEAR(y[i], srgbEncode(x[i]), 1e-5) << x[i];
    ColorSpace::sRGB()->converter().encode(in, out, n);
    for (int i = 0; i < n; ++i) ASSERT_NEAR(y[i], srgbEncode(x[i]), 2e-6) << x[i];
}

TEST_P(ColorTest, ExtendedRangeIsKept) {
    auto space = ColorSpace::sRGB();
    for (double v : {-0.5, -0.01, 1.5, 4.0}) {
        auto back = space->toLinear(space->fromLinear({v, v, v}));
        EXPECT_NEAR(back[0], v, 2e-5 * std::abs(v));
    }
}

TEST_P(ColorTest, AdobeRGBAgreesWithItsDefinition) {
    // Adobe RGB green in linear sRGB by the published D65 primaries of both.
    auto green = ColorSpace::adobeRGB()->toLinear(std::array{0.0, 1.0, 0.0});
    EXPECT_NEAR(green[0], -0.3983, 2e-3);
    EXPECT_NEAR(green[1], 1.0, 2e-3);
    EXPECT_NEAR(green[2], -0.0429, 2e-3);
    auto gray = ColorSpace::adobeRGB()->toLinear(std::array{0.5, 0.5, 0.5});
    for (double v : gray) EXPECT_NEAR(v, std::pow(0.5, 2.19921875), 2e-4);
}

TEST_P(ColorTest, EverySpaceRoundTrips) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> unit(0.02, 0.98);
    ColorSpacePtr spaces[] = {
        ColorSpace::sRGB(),
        ColorSpace::linearSRGB(),
        ColorSpace::deviceRGB(),
        ColorSpace::adobeRGB(),
        ColorSpace::calibratedRGB({0.9505, 1, 1.089}, {0, 0, 0}, {1.8, 2.0, 2.2},
                                  {0.4497, 0.2446, 0.0252, 0.3163, 0.6720, 0.1412, 0.1845, 0.0833, 0.9227}),
        ColorSpace::lab({0.9642, 1, 0.8249}, {0, 0, 0}, {-128, 127, -128, 127}),
        ColorSpace::deviceCMYK()};
    for (auto& space : spaces)
        for (int i = 0; i < 50; ++i) {
            ColorSpace::Triple color = {unit(random), unit(random), unit(random)};
            auto back = space->toLinear(space->fromLinear(color));
            for (int c = 0; c < 3; ++c) EXPECT_NEAR(back[c], color[c], 2e-3) << space->name();
        }
}

TEST_P(ColorTest, GrayIsNeutralAndWeighed) {
    auto white = ColorSpace::deviceGray()->toLinear(std::array{0.5});
    EXPECT_NEAR(white[0], std::pow(0.5, 2.2), 1e-4);
    EXPECT_EQ(white[0], white[2]);
    EXPECT_NEAR(ColorSpace::linearGray()->fromLinear({1, 0, 0})[0], 0.2126, 1e-5);
}

TEST_P(ColorTest, LabFollowsItsDefinition) {
    auto space = ColorSpace::lab({0.9642, 1, 0.8249}, {0, 0, 0}, {-100, 100, -100, 100});
    auto gray = space->toLinear(std::array{50.0, 0.0, 0.0});
    for (double v : gray) EXPECT_NEAR(v, std::pow(66 / 116.0, 3), 2e-3);
    EXPECT_EQ(space->range(0)[1], 100);
    EXPECT_EQ(space->range(1)[0], -100);
}

TEST(ColorSpace, ICCBytesMakeTheSameSpace) {
    for (auto& space : {ColorSpace::sRGB(), ColorSpace::adobeRGB(), ColorSpace::deviceGray()}) {
        auto again = ColorSpace::fromICC(space->iccData());
        ASSERT_TRUE(again);
        EXPECT_TRUE(again->sameAs(*space));
        EXPECT_FALSE(again->sameAs(*ColorSpace::linearSRGB()));
        std::vector<double> coded(space->components(), 0.4);
        // The file rounds matrix and curves to 16 bits.
        EXPECT_NEAR(again->toLinear(coded)[1], space->toLinear(coded)[1], 1e-5);
    }
}

TEST(ColorSpace, DamagedProfilesGiveNull) {
    auto bytes = ColorSpace::adobeRGB()->iccData();
    EXPECT_FALSE(ColorSpace::fromICC({}));
    EXPECT_FALSE(ColorSpace::fromICC(std::span(bytes).first(64)));
    // However a profile is cut or damaged, the result is a space or null.
    for (std::size_t size = 0; size < bytes.size(); size += 7)
        ColorSpace::fromICC(std::span(bytes).first(size));
    std::mt19937 random(3);
    for (int i = 0; i < 300; ++i) {
        auto damaged = bytes;
        for (int k = 0; k < 4; ++k) damaged[random() % damaged.size()] ^= 1u << random() % 8;
        if (auto space = ColorSpace::fromICC(damaged)) {
            std::vector<double> coded(space->components(), 0.5);
            space->toLinear(coded);
        }
    }
}

TEST(ColorSpace, RefusesWhatCannotBe) {
    EXPECT_THROW(ColorSpace::calibratedGray({1, 0, 1}, {}, 2.2), std::invalid_argument);
    EXPECT_THROW(ColorSpace::calibratedGray({1, 1, 1}, {}, -1), std::invalid_argument);
    EXPECT_THROW(ColorSpace::calibratedRGB({1, 1, 1}, {}, {1, 1, 1}, {}), std::invalid_argument);
    EXPECT_THROW(ColorSpace::lab({1, 1, 1}, {}, {0, 0, 0, 0}), std::invalid_argument);
    EXPECT_THROW(ColorSpace::sRGB()->toLinear(std::array{1.0}), std::invalid_argument);
}

TEST(ColorSpace, ConvertsInterleavedPixels) {
    // CMYK bytes to RGBA bytes; alpha is left alone.
    const std::uint8_t cmyk[] = {0, 0, 0, 0, 255, 0, 0, 0, 0, 0, 0, 255};
    std::uint8_t rgba[] = {9, 9, 9, 77, 9, 9, 9, 78, 9, 9, 9, 79};
    convert(cmyk, {}, *ColorSpace::deviceCMYK(), rgba, {}, *ColorSpace::sRGB(), 3);
    const std::uint8_t expected[] = {255, 255, 255, 77, 0, 255, 255, 78, 0, 0, 0, 79};
    EXPECT_EQ(std::memcmp(rgba, expected, sizeof rgba), 0);

    // Through 16-bit Lab and back, to within one step of 8 bits.
    std::vector<std::uint8_t> pixels(3 * 500), back(pixels.size());
    std::vector<std::uint16_t> lab(pixels.size());
    for (std::size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<std::uint8_t>(i * 31 % 251);
    auto space = ColorSpace::lab({0.9642, 1, 0.8249}, {}, {-128, 127, -128, 127});
    Layout rgb8{Sample::u8, 3, {0, 1, 2}}, lab16{Sample::u16, 3, {0, 1, 2}};
    convert(pixels.data(), rgb8, *ColorSpace::sRGB(), lab.data(), lab16, *space, 500);
    convert(lab.data(), lab16, *space, back.data(), rgb8, *ColorSpace::sRGB(), 500);
    for (std::size_t i = 0; i < pixels.size(); ++i) EXPECT_NEAR(pixels[i], back[i], 1) << i;
}

} // namespace
