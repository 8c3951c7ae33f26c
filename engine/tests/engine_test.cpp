// Every filter against a reference in double precision that is written here anew, and what the engine
// promises beside right pixels: laziness, fusion, independence of tiles and of the instruction set.
#include "reference.h"

#include <atomic>
#include <cstring>

using namespace reference;

// ------------------------------------------------------------------------------------ colour filters

TEST(Filters, Exposure) {
    Picture p = noise(37, 11, 1);
    Picture expected = mapped(p, [](Pixel q) -> Pixel {
        double f = std::pow(2, 0.7);
        return {q[0] * f, q[1] * f, q[2] * f, q[3]};
    });
    EXPECT_LT(error(filter("CIExposureAdjust", {{"inputImage", imageOf(p)}, {"inputEV", 0.7}}), expected),
              floatError);
}

TEST(Filters, Gamma) {
    Picture p = noise(37, 11, 2);
    Picture expected = mapped(p, [](Pixel q) -> Pixel {
        return {std::pow(q[0], 0.75), std::pow(q[1], 0.75), std::pow(q[2], 0.75), q[3]};
    });
    EXPECT_LT(error(filter("CIGammaAdjust", {{"inputImage", imageOf(p)}, {"inputPower", 0.75}}), expected),
              floatError);
}

TEST(Filters, Invert) {
    Picture p = noise(37, 11, 3);
    Picture expected = mapped(p, [](Pixel q) -> Pixel { return {1 - q[0], 1 - q[1], 1 - q[2], q[3]}; });
    EXPECT_LT(error(filter("CIColorInvert", {{"inputImage", imageOf(p)}}), expected), floatError);
}

TEST(Filters, ColorControls) {
    Picture p = noise(37, 11, 4);
    Picture expected = mapped(p, [](Pixel q) {
        double y = 0.2126 * q[0] + 0.7152 * q[1] + 0.0722 * q[2];
        for (int c = 0; c < 3; ++c) q[c] = (y + 1.4 * (q[c] - y) + 0.1 - 0.5) * 1.3 + 0.5;
        return q;
    });
    Values values{{"inputImage", imageOf(p)},
                  {"inputSaturation", 1.4},
                  {"inputBrightness", 0.1},
                  {"inputContrast", 1.3}};
    EXPECT_LT(error(filter("CIColorControls", values), expected), floatError);
}

TEST(Filters, SepiaTintsCodedColour) {
    Picture p = noise(37, 11, 5);
    Picture expected = mapped(p, [](Pixel q) -> Pixel {
        double red = coded(q[0]), green = coded(q[1]), blue = coded(q[2]);
        double r = 0.393 * red + 0.769 * green + 0.189 * blue, g = 0.349 * red + 0.686 * green + 0.168 * blue;
        double b = 0.272 * red + 0.534 * green + 0.131 * blue;
        return {linear(red + 0.6 * (r - red)), linear(green + 0.6 * (g - green)),
                linear(blue + 0.6 * (b - blue)), q[3]};
    });
    EXPECT_LT(error(filter("CISepiaTone", {{"inputImage", imageOf(p)}, {"inputIntensity", 0.6}}), expected),
              floatError);
}

TEST(Filters, HueTurnsThereAndBackAndKeepsGray) {
    Picture p = noise(37, 11, 6);
    auto turned = [](const Image& image, double angle) {
        return filter("CIHueAdjust", {{"inputImage", image}, {"inputAngle", angle}});
    };
    EXPECT_LT(error(turned(turned(imageOf(p), 1.1), -1.1), p), floatError);
    Picture gray = mapped(p, [](Pixel q) -> Pixel { return {q[0], q[0], q[0], q[3]}; });
    EXPECT_LT(error(turned(imageOf(gray), 2), gray), floatError);
    // Half a turn mirrors the chroma at the gray of the same Y.
    Picture expected = mapped(p, [](Pixel q) {
        double y = 0.299 * q[0] + 0.587 * q[1] + 0.114 * q[2];
        return Pixel{2 * y - q[0], 2 * y - q[1], 2 * y - q[2], q[3]};
    });
    EXPECT_LT(error(turned(imageOf(p), M_PI), expected), floatError);
}

TEST(Filters, ColorMatrix) {
    Picture p = noise(37, 11, 7);
    double m[4][4] = {{0.5, 0.2, 0.1, 0.1}, {-0.3, 1.1, 0, 0}, {0, 0.4, 0.6, -0.2}, {0.1, 0, 0.2, 0.6}};
    double bias[4] = {0.05, -0.1, 0.2, 0.1};
    Picture expected = mapped(p, [&](Pixel q) {
        Pixel out;
        for (int i = 0; i < 4; ++i) {
            out[i] = bias[i];
            for (int k = 0; k < 4; ++k) out[i] += m[i][k] * q[k];
        }
        return out;
    });
    auto row = [&](int i) { return Numbers(m[i], m[i] + 4); };
    Image image = filter("CIColorMatrix", {{"inputImage", imageOf(p)},
                                           {"inputRVector", row(0)},
                                           {"inputGVector", row(1)},
                                           {"inputBVector", row(2)},
                                           {"inputAVector", row(3)},
                                           {"inputBiasVector", Numbers(bias, bias + 4)}});
    EXPECT_LT(error(image, expected), floatError);
    // Alpha's bias does not make the world outside of the image opaque.
    EXPECT_EQ(rendered(image, -3, -3, 3, 3).get(-1, -1), Pixel{});
}

TEST(Filters, Vignette) {
    Picture p = noise(40, 30, 8);
    Picture expected = filled(0, 0, 40, 30, [&](int x, int y) {
        Pixel q = p.get(x, y);
        double d = std::hypot(x + 0.5 - 20, y + 0.5 - 15) / 25 * 1.5,
               f = 1 + 0.8 * (std::pow(std::cos(std::atan(d)), 4) - 1);
        return Pixel{q[0] * f, q[1] * f, q[2] * f, q[3]};
    });
    Values values{{"inputImage", imageOf(p)}, {"inputIntensity", 0.8}, {"inputRadius", 1.5}};
    EXPECT_LT(error(filter("CIVignette", values), expected), floatError);
}

// --------------------------------------------------------------------------------------------- blurs

TEST(Filters, ClampKeepsStraightComponentsBetweenLimits) {
    Picture p = noise(37, 11, 30);
    Picture expected(0, 0, 37, 11);
    for (std::size_t i = 0; i < p.pixels.size(); ++i) {
        Pixel q = p.pixels[i];
        const double low[] = {0.2, 0, 0.4, 0.25}, high[] = {0.5, 0.9, 0.6, 0.75};
        double alpha = std::clamp(q[3], low[3], high[3]);
        for (int c = 0; c < 3; ++c)
            expected.pixels[i][c] = alpha * std::clamp(q[3] > 0 ? q[c] / q[3] : 0, low[c], high[c]);
        expected.pixels[i][3] = alpha;
    }
    Values values{{"inputImage", imageOf(p)},
                  {"inputMinComponents", Numbers{0.2, 0, 0.4, 0.25}},
                  {"inputMaxComponents", Numbers{0.5, 0.9, 0.6, 0.75}}};
    EXPECT_LT(error(filter("CIColorClamp", values), expected), floatError);
    EXPECT_LT(error(filter("CIColorClamp", {{"inputImage", imageOf(p)}}), p), floatError);
}

TEST(Filters, PolynomialsAreCubicInEachComponent) {
    Picture p = noise(37, 11, 31);
    auto cubic = [](const Numbers& k, double x) { return k[0] + k[1] * x + k[2] * x * x + k[3] * x * x * x; };
    const Numbers red{0.1, 0.5, -0.3, 0.7}, green{0, 0, 1, 0}, blue{0.9, -0.9, 0, 0.2}, alpha{0, 0.5, 0, 0.4};
    Picture expected = mapped(p, [&](Pixel q) -> Pixel {
        return {cubic(red, q[0]), cubic(green, q[1]), cubic(blue, q[2]), cubic(alpha, q[3])};
    });
    Values values{{"inputImage", imageOf(p)},
                  {"inputRedCoefficients", red},
                  {"inputGreenCoefficients", green},
                  {"inputBlueCoefficients", blue},
                  {"inputAlphaCoefficients", alpha}};
    EXPECT_LT(error(filter("CIColorPolynomial", values), expected), floatError);
    EXPECT_LT(error(filter("CIColorPolynomial", {{"inputImage", imageOf(p)}}), p), floatError);
}

TEST(Filters, CrossPolynomialsAreQuadraticInAllComponents) {
    Picture p = noise(37, 11, 32);
    const Numbers red{0.5, 0, 0.2, 0.1, 0, 0, 0.3, 0, 0, 0}, green{0, 0.4, 0, 0, 0.2, 0, 0, 0.3, 0, 0.1};
    const Numbers blue{0.1, 0.1, 0.1, 0, 0, 0.5, 0, 0, 0.4, 0.05};
    auto sum = [](const Numbers& k, const Pixel& q) {
        double r = q[0], g = q[1], b = q[2], terms[] = {r, g, b, r * r, g * g, b * b, r * g, g * b, b * r, 1},
               out = 0;
        for (int i = 0; i < 10; ++i) out += k[i] * terms[i];
        return out;
    };
    Picture expected = mapped(p, [&](Pixel q) -> Pixel {
        return {sum(red, q), sum(green, q), sum(blue, q), q[3]};
    });
    Values values{{"inputImage", imageOf(p)},
                  {"inputRedCoefficients", red},
                  {"inputGreenCoefficients", green},
                  {"inputBlueCoefficients", blue}};
    EXPECT_LT(error(filter("CIColorCrossPolynomial", values), expected), floatError);
    EXPECT_LT(error(filter("CIColorCrossPolynomial", {{"inputImage", imageOf(p)}}), p), floatError);
}

TEST(Filters, PosterizeLeavesEvenStepsOfCodedColour) {
    // Away from the places where a step begins, which rounding may put on either side.
    Picture p = filled(0, 0, 41, 7, [](int x, int y) -> Pixel {
        double c = (x + 0.25) / 41.5, a = y < 3 ? 1 : 0.5;
        return {a * linear(c), a * linear(1 - c), a * linear(c * 0.9), a};
    });
    Picture expected = mapped(p, [](Pixel q) {
        for (int c = 0; c < 3; ++c) q[c] = linear(std::floor(coded(q[c]) * 3 + 0.5) / 3);
        return q;
    });
    EXPECT_LT(error(filter("CIColorPosterize", {{"inputImage", imageOf(p)}, {"inputLevels", 4.0}}), expected),
              floatError);
}

double brightness(const Pixel& p) { return 0.2126 * p[0] + 0.7152 * p[1] + 0.0722 * p[2]; }

TEST(Filters, MaskToAlphaIsAsOpaqueAsThePictureIsBright) {
    Picture p = noise(37, 11, 33);
    Picture expected = filled(0, 0, 37, 11, [&](int x, int y) {
        double a = brightness(p.get(x, y));
        return Pixel{a, a, a, a};
    });
    EXPECT_LT(error(filter("CIMaskToAlpha", {{"inputImage", imageOf(p)}}), expected), floatError);
}

TEST(Filters, FalseColorMixesTwoColoursByBrightness) {
    Picture p = noise(37, 11, 34);
    Values values{{"inputImage", imageOf(p)},
                  {"inputColor0", Color{0.2, 0.4, 0, 1}},
                  {"inputColor1", Color{1, 0.5, 0.7, 0.5}}};
    const double first[] = {linear(0.2), linear(0.4), 0, 1};
    const double second[] = {0.5, 0.5 * linear(0.5), 0.5 * linear(0.7), 0.5};
    Picture expected = filled(0, 0, 37, 11, [&](int x, int y) {
        Pixel q = p.get(x, y), out;
        double t = q[3] > 0 ? brightness(q) / q[3] : 0;
        for (int c = 0; c < 4; ++c) out[c] = q[3] * (first[c] * (1 - t) + second[c] * t);
        return out;
    });
    EXPECT_LT(error(filter("CIFalseColor", values), expected), floatError);
}

TEST(Filters, ColorCubeMixesTheEntriesAround) {
    Picture p = noise(37, 11, 35);
    const int side = 3;
    std::mt19937 random(36);
    std::vector<float> entries(4 * side * side * side);
    for (float& v : entries) v = float(random() >> 8) / float(1 << 24);
    auto entry = [&](int r, int g, int b, int c) {
        return double(entries[4 * (r + side * (g + side * b)) + c]);
    };
    // Along red, then green, then blue.
    Picture expected = filled(0, 0, 37, 11, [&](int x, int y) {
        Pixel q = p.get(x, y), out;
        int low[3];
        double t[3];
        for (int c = 0; c < 3; ++c) {
            double place = 2 * (q[3] > 0 ? q[c] / q[3] : 0);
            low[c] = place >= 1 ? 1 : 0;
            t[c] = place - low[c];
        }
        for (int c = 0; c < 4; ++c) {
            auto red = [&](int g, int b) {
                return (1 - t[0]) * entry(low[0], g, b, c) + t[0] * entry(low[0] + 1, g, b, c);
            };
            auto green = [&](int b) { return (1 - t[1]) * red(low[1], b) + t[1] * red(low[1] + 1, b); };
            out[c] = q[3] * ((1 - t[2]) * green(low[2]) + t[2] * green(low[2] + 1));
        }
        return out;
    });
    Bytes bytes(entries.size() * sizeof(float));
    std::memcpy(bytes.data(), entries.data(), bytes.size());
    Values values{{"inputImage", imageOf(p)}, {"inputCubeDimension", 3.0}, {"inputCubeData", bytes}};
    EXPECT_LT(error(filter("CIColorCube", values), expected), floatError);
    EXPECT_LT(error(filter("CIColorCube", {{"inputImage", imageOf(p)}}), p), floatError);
    bytes.pop_back();
    values["inputCubeData"] = bytes;
    EXPECT_TRUE(filter("CIColorCube", values)->extent().isEmpty());
}

TEST(Filters, UnsharpMaskAddsTheDifferenceFromABlur) {
    Picture p = noise(40, 30, 37);
    double sigma = 2, k = 0.8;
    Picture around = filled(-10, -10, 60, 50,
                            [&](int x, int y) { return p.get(std::clamp(x, 0, 39), std::clamp(y, 0, 29)); });
    Picture blurred = trueGaussian(around, sigma);
    Picture expected = filled(0, 0, 40, 30, [&](int x, int y) {
        Pixel out;
        for (int c = 0; c < 4; ++c) out[c] = p.get(x, y)[c] + k * (p.get(x, y)[c] - blurred.get(x, y)[c]);
        return out;
    });
    Values values{{"inputImage", imageOf(p)}, {"inputRadius", sigma}, {"inputIntensity", k}};
    EXPECT_LT(error(filter("CIUnsharpMask", values), expected), halfStep);
    Picture plain = filled(0, 0, 20, 20, [](int, int) { return Pixel{0.5, 0.25, 0, 1}; });
    EXPECT_LT(error(filter("CIUnsharpMask", {{"inputImage", imageOf(plain)}}), plain), floatError);
}

TEST(Filters, AnAreaInOnePixel) {
    Picture p = noise(50, 30, 38);
    // Part of it lies beside the picture, above it too.
    const Numbers extent{10.4, 5, 60, 33.3};
    Pixel sum{}, most, least, opaque, clear;
    bool first = true;
    for (int y = 5; y < 38; ++y)
        for (int x = 10; x < 70; ++x) {
            Pixel q = p.get(x, y);
            for (int c = 0; c < 4; ++c) {
                sum[c] += q[c] / (60 * 33);
                most[c] = first ? q[c] : std::max(most[c], q[c]);
                least[c] = first ? q[c] : std::min(least[c], q[c]);
            }
            if (first || q[3] > opaque[3]) opaque = q;
            if (first || q[3] < clear[3]) clear = q;
            first = false;
        }
    const std::pair<const char*, Pixel> expected[] = {{"CIAreaAverage", sum},
                                                      {"CIAreaMaximum", most},
                                                      {"CIAreaMinimum", least},
                                                      {"CIAreaMaximumAlpha", opaque},
                                                      {"CIAreaMinimumAlpha", clear}};
    for (const auto& [name, pixel] : expected) {
        Image image = filter(name, {{"inputImage", imageOf(p)}, {"inputExtent", extent}});
        EXPECT_EQ(image->extent(), (Rect{0, 0, 1, 1})) << name;
        Pixel got = rendered(image, 0, 0, 1, 1).get(0, 0);
        for (int c = 0; c < 4; ++c) EXPECT_NEAR(got[c], pixel[c], 1e-6) << name << c;
    }
    // Inside the picture, where a transparent pixel does not count.
    Picture bright = filled(0, 0, 9, 9, [](int x, int y) {
        return Pixel{0.5 + 0.01 * x, 0.5 + 0.01 * y, 0.5, 1};
    });
    Pixel got = rendered(filter("CIAreaMinimum",
                                {{"inputImage", imageOf(bright)}, {"inputExtent", Numbers{2, 3, 4, 4}}}),
                         0, 0, 1, 1)
                    .get(0, 0);
    EXPECT_NEAR(got[0], 0.52, 1e-6);
    EXPECT_NEAR(got[1], 0.53, 1e-6);
    // An endless area is the picture.
    Values values{{"inputImage", imageOf(bright)}, {"inputExtent", Numbers{0, 0, 1e38, 1e38}}};
    EXPECT_NEAR(rendered(filter("CIAreaAverage", values), 0, 0, 1, 1).get(0, 0)[0], 0.54, 1e-6);
    values["inputExtent"] = Numbers{0, 0, 0, 5};
    EXPECT_TRUE(filter("CIAreaAverage", values)->extent().isEmpty());
}

class Gaussian : public testing::TestWithParam<double> {};

TEST_P(Gaussian, IsATrueGaussian) {
    double sigma = GetParam();
    // Edges are hardest: a block next to nothing, with stripes in it.
    Picture p = filled(3, -2, 90, 70, [](int x, int y) {
        return x % 7 < 4 ? Pixel{1, 0, 1, 1} : Pixel{0, y / 70., 0, 1};
    });
    Image image = filter("CIGaussianBlur", {{"inputImage", imageOf(p)}, {"inputRadius", sigma}});
    Rect e = image->extent();
    EXPECT_EQ(e, Rect({3, -2, 93, 68}).grown(std::ceil(3 * sigma), std::ceil(3 * sigma)));
    Picture truth = trueGaussian(p, sigma);
    EXPECT_LT(error(image, part(truth, int(e.x0), int(e.y0), int(e.width()), int(e.height()))), halfStep);
}
INSTANTIATE_TEST_SUITE_P(Radii, Gaussian, testing::Values(0.5, 1.0, 2.7, 7.9, 8.0, 12.3, 20.0, 33.0, 60.0));

TEST(Filters, BoxBlur) {
    Picture p = noise(50, 41, 9);
    for (double radius : {1.0, 3.0, 7.25}) {
        auto weight = [=](int k) {
            return std::clamp(radius + 1 - std::abs(k), 0.0, 1.0) / (2 * radius + 1);
        };
        Picture truth = bothWays(p, 9, weight);
        EXPECT_LT(error(filter("CIBoxBlur", {{"inputImage", imageOf(p)}, {"inputRadius", radius}}), truth),
                  floatError)
            << radius;
    }
}

// ------------------------------------------------------------------------------------------ geometry

TEST(Geometry, MovesByWholePixelsExactly) {
    Picture p = noise(20, 20, 10);
    Picture moved = p;
    moved.x0 += 1000000, moved.y0 -= 777777;
    Affine m = Affine::translation(1000000, -777777);
    EXPECT_LT(error(filter("CIAffineTransform", {{"inputImage", imageOf(p)}, {"inputTransform", m}}), moved),
              1e-7);
}

TEST(Geometry, TurnsBilinearly) {
    Picture p = noise(60, 60, 11);
    Affine m = Affine::rotation(0.4).then(Affine::translation(5, 3));
    Affine back = *m.inverse();
    Image image = transform(imageOf(p), m);
    Picture got = rendered(image, -30, 0, 100, 90);
    int inside = 0;
    for (int y = 0; y < 90; ++y)
        for (int x = -30; x < 70; ++x) {
            Point s = back.apply(Point{x + 0.5, y + 0.5});
            if (s.x < 1 || s.y < 1 || s.x > 59 || s.y > 59) continue;
            ++inside;
            Pixel want = bilinear(p, s.x, s.y);
            for (int c = 0; c < 4; ++c) ASSERT_NEAR(got.get(x, y)[c], want[c], floatError) << x << ' ' << y;
        }
    EXPECT_GT(inside, 3000);
}

TEST(Geometry, ScaledPictureStaysOpaqueUpToItsEdge) {
    Picture p = filled(0, 0, 10, 10, [](int, int) { return Pixel{0.5, 0.5, 0.5, 1}; });
    for (double f : {0.1, 0.3, 0.5, 2.5, 7.0}) {
        Image image = transform(imageOf(p), Affine::scale(f, f));
        int n = int(10 * f);
        Picture got = rendered(image, -2, -2, n + 6, n + 6);
        for (int y = 0; y < n; ++y)
            for (int x = 0; x < n; ++x) ASSERT_NEAR(got.get(x, y)[3], 1, 1e-5) << f << ' ' << x << ' ' << y;
        EXPECT_EQ(got.get(-1, 0), Pixel{}) << f;
        EXPECT_EQ(got.get(n + 1, 0), Pixel{}) << f;
    }
    // Half a pixel of it is half of a pixel.
    EXPECT_NEAR(rendered(transform(imageOf(p), Affine::translation(0.5, 0)), 0, 0, 1, 1).get(0, 0)[3], 0.5,
                1e-6);
}

TEST(Geometry, MadeSmallerByMeans) {
    Picture p = noise(64, 48, 12);
    Picture expected = filled(0, 0, 16, 12, [&](int x, int y) {
        Pixel sum{};
        for (int k = 0; k < 16; ++k)
            for (int c = 0; c < 4; ++c) sum[c] += p.get(4 * x + k % 4, 4 * y + k / 4)[c] / 16;
        return sum;
    });
    EXPECT_LT(error(transform(imageOf(p), Affine::scale(0.25, 0.25)), expected), floatError);
    // The same when the target is smaller than the source.
    std::vector<float> out(4 * 16 * 12);
    render(imageOf(p), {0, 0, 64, 48}, {linearLayout(16, 12), out.data(), 16 * 16}, {0, 0, 16, 12});
    EXPECT_NEAR(out[4 * (11 * 16 + 3)], expected.get(3, 0)[0], floatError);
}

TEST(Geometry, CropAndClamp) {
    Picture p = noise(30, 30, 13);
    Image cropped =
        filter("CICrop", {{"inputImage", imageOf(p)}, {"inputRectangle", Numbers{4.4, 5, 10, 12.6}}});
    EXPECT_EQ(cropped->extent(), (Rect{4.4, 5, 14.4, 17.6}));
    Picture expected = filled(0, 0, 30, 30, [&](int x, int y) {
        return x >= 4 && x < 14 && y >= 5 && y < 18 ? p.get(x, y) : Pixel{};
    });
    EXPECT_LT(error(cropped, expected), 1e-6);
    EXPECT_EQ(filter("CICrop", {{"inputImage", cropped}})->extent(), cropped->extent());
    Picture clamped = filled(-700, -9, 1500, 50,
                             [&](int x, int y) { return p.get(std::clamp(x, 0, 29), std::clamp(y, 0, 29)); });
    EXPECT_LT(error(clampToEdge(imageOf(p)), clamped), 1e-6);
}

// What a sampler reads at a place: of the pixel it lies in, or of the four around, with nothing or the edge
// beyond.
Pixel read(const Picture& p, double x, double y, Wrap wrap, Interpolation interpolation) {
    auto pixel = [&](int i, int j) {
        if (wrap == Wrap::black) return p.get(i, j);
        return p.get(std::clamp(i, p.x0, p.x0 + p.width - 1), std::clamp(j, p.y0, p.y0 + p.height - 1));
    };
    if (interpolation == Interpolation::nearest) return pixel(int(std::floor(x)), int(std::floor(y)));
    int i = int(std::floor(x - 0.5)), j = int(std::floor(y - 0.5));
    double u = x - 0.5 - i, v = y - 0.5 - j;
    Pixel out;
    for (int c = 0; c < 4; ++c)
        out[c] = (1 - v) * ((1 - u) * pixel(i, j)[c] + u * pixel(i + 1, j)[c]) +
                 v * ((1 - u) * pixel(i, j + 1)[c] + u * pixel(i + 1, j + 1)[c]);
    return out;
}

class Sampler : public testing::TestWithParam<std::tuple<Wrap, Interpolation>> {
  protected:
    Wrap wrap = std::get<0>(GetParam());
    Interpolation interpolation = std::get<1>(GetParam());
};

TEST_P(Sampler, ReadsTurnedAndScaledPlaces) {
    for (double factor : {2.6, 0.3}) { // larger, and smaller without any means
        Picture p = noise(24, 18, 15);
        Affine m =
            Affine::rotation(0.4).then(Affine::scale(factor, factor * 0.9)).then(Affine::translation(7, -3));
        Affine back = *m.inverse();
        Picture expected = filled(-40, -20, 150, 110, [&](int x, int y) {
            Point s = back.apply(Point{x + 0.5, y + 0.5});
            return read(p, s.x, s.y, wrap, interpolation);
        });
        EXPECT_LT(error(sampled(imageOf(p), m, wrap, interpolation), expected), floatError) << factor;
    }
}

TEST_P(Sampler, ReadsTheSameInPartsAndFarAway) {
    Picture p = noise(24, 18, 16);
    double far = 1 << 20;
    // A turn by a right angle, where every place is the centre of a pixel; and such a scale that a tile reads
    // more than is kept of the input.
    Picture expected = filled(int(far) - 20, 0, 24, 26, [&](int x, int y) {
        return read(p, y + 0.5, far - x - 0.5, wrap, interpolation);
    });
    Affine turn{0, 1, -1, 0, far, 0};
    EXPECT_LT(error(sampled(imageOf(p), turn, wrap, interpolation), expected), floatError);
    Picture large = noise(2600, 1400, 17);
    Picture few = filled(0, 0, 13, 7, [&](int x, int y) {
        return read(large, (x + 0.5) * 200, (y + 0.5) * 200, wrap, interpolation);
    });
    EXPECT_LT(error(sampled(imageOf(large), Affine::scale(0.005, 0.005), wrap, interpolation), few),
              floatError);
}

TEST_P(Sampler, ByWholePixelsIsTheImage) {
    Picture p = noise(24, 18, 18);
    Picture moved = filled(
        0, 0, 40, 30, [&](int x, int y) { return read(p, x - 4.5, y - 2.5, wrap, Interpolation::nearest); });
    Image image = sampled(imageOf(p), Affine::translation(5, 3), wrap, interpolation);
    EXPECT_LT(error(image, moved), 1e-7);
    EXPECT_EQ(image->extent(), wrap == Wrap::clamp ? Rect::infinite() : (Rect{5, 3, 29, 21}));
}

INSTANTIATE_TEST_SUITE_P(Modes, Sampler,
                         testing::Combine(testing::Values(Wrap::black, Wrap::clamp),
                                          testing::Values(Interpolation::nearest, Interpolation::linear)));

TEST(Geometry, TheExtentOfWhatASamplerReads) {
    Image image = imageOf(noise(10, 6, 19));
    Affine twice = Affine::scale(2, 2);
    EXPECT_EQ(sampled(image, twice, Wrap::black, Interpolation::nearest)->extent(), (Rect{0, 0, 20, 12}));
    EXPECT_EQ(sampled(image, twice, Wrap::black, Interpolation::linear)->extent(), (Rect{-1, -1, 21, 13}));
    EXPECT_EQ(sampled(image, twice, Wrap::clamp, Interpolation::linear)->extent(), Rect::infinite());
    EXPECT_TRUE(sampled(empty(), twice, Wrap::clamp, Interpolation::linear)->extent().isEmpty());
    EXPECT_TRUE(sampled(image, Affine::scale(0, 1), Wrap::clamp, Interpolation::linear)->extent().isEmpty());
    EXPECT_EQ(sampled(nullptr, twice, Wrap::black, Interpolation::linear), nullptr);
    EXPECT_THROW(sampled(image, Affine::scale(NAN, 1), Wrap::black, Interpolation::linear),
                 std::invalid_argument);
}

TEST(Geometry, AffineClampContinuesTheEdge) {
    Picture p = noise(20, 16, 40);
    Picture expected = filled(-30, -20, 90, 70, [&](int x, int y) {
        return read(p, (x + 0.5 - 7) / 2.5, (y + 0.5 + 3) / 2.5, Wrap::clamp, Interpolation::linear);
    });
    Values values{{"inputImage", imageOf(p)}, {"inputTransform", Affine{2.5, 0, 0, 2.5, 7, -3}}};
    EXPECT_LT(error(filter("CIAffineClamp", values), expected), floatError);
    EXPECT_EQ(filter("CIAffineClamp", values)->extent(), Rect::infinite());
}

TEST(Geometry, AffineTileRepeatsThePicture) {
    Picture p = noise(20, 16, 41);
    p.x0 = 5, p.y0 = -3;
    auto tile = [&](int x, int y) {
        auto mod = [](int a, int b) { return ((a % b) + b) % b; };
        return p.get(5 + mod(x - 5, 20), -3 + mod(y + 3, 16));
    };
    Picture plain = filled(-700, -50, 1400, 100, tile);
    EXPECT_LT(error(filter("CIAffineTile", {{"inputImage", imageOf(p)}}), plain), 1e-7);
    // Turned, the seams are mixed like any neighbours.
    Affine m = Affine::rotation(0.3).then(Affine::scale(1.7, 1.7)), back = *m.inverse();
    Picture turned = filled(-60, -60, 120, 120, [&](int x, int y) {
        Point s = back.apply(Point{x + 0.5, y + 0.5});
        int i = int(std::floor(s.x - 0.5)), j = int(std::floor(s.y - 0.5));
        double u = s.x - 0.5 - i, v = s.y - 0.5 - j;
        Pixel out;
        for (int c = 0; c < 4; ++c)
            out[c] = (1 - v) * ((1 - u) * tile(i, j)[c] + u * tile(i + 1, j)[c]) +
                     v * ((1 - u) * tile(i, j + 1)[c] + u * tile(i + 1, j + 1)[c]);
        return out;
    });
    EXPECT_LT(error(filter("CIAffineTile", {{"inputImage", imageOf(p)}, {"inputTransform", m}}), turned),
              floatError);
    // What is endless already stays as it is.
    Image endless = constant({1, 0, 0, 1});
    EXPECT_EQ(filter("CIAffineTile", {{"inputImage", endless}}), endless);
}

TEST(Geometry, KaleidoscopeMirrorsASector) {
    Picture p = noise(60, 50, 42);
    double count = 5, turn = 0.3, sector = 2 * M_PI / count;
    Picture expected = filled(-60, -60, 150, 150, [&](int x, int y) {
        double px = x + 0.5 - 20, py = y + 0.5 - 15;
        double angle = std::fmod(std::atan2(py, px) - turn + 100 * sector + sector / 2, sector) - sector / 2;
        double radius = std::hypot(px, py), a = turn + std::abs(angle);
        return bilinear(p, 20 + radius * std::cos(a), 15 + radius * std::sin(a));
    });
    Image image = filter("CIKaleidoscope", {{"inputImage", imageOf(p)},
                                            {"inputCenter", Numbers{20, 15}},
                                            {"inputCount", count},
                                            {"inputAngle", turn}});
    EXPECT_LT(error(image, expected), 5e-5); // places are kept in single precision
    // The square around the circle through the farthest corner, (60, 50).
    double radius = std::hypot(40, 35);
    EXPECT_EQ(image->extent(), (Rect{20 - radius, 15 - radius, 20 + radius, 15 + radius}));
}

TEST(Geometry, BumpsAndPinchesMoveTheInsideOfACircle) {
    Picture p = noise(60, 60, 43);
    for (auto [name, scale, strength] : {std::tuple("CIBumpDistortion", 0.6, 0.6),
                                         {"CIBumpDistortion", -0.8, -0.8},
                                         {"CIPinchDistortion", 0.9, -0.9}}) {
        Image image = filter(name, {{"inputImage", imageOf(p)},
                                    {"inputCenter", Numbers{32, 28}},
                                    {"inputRadius", 21.0},
                                    {"inputScale", scale}});
        double k = strength;
        Picture expected = filled(0, 0, 60, 60, [&](int x, int y) {
            double px = x + 0.5 - 32, py = y + 0.5 - 28, inside = 1 - (px * px + py * py) / (21 * 21);
            if (inside <= 0) return p.get(x, y);
            double f = 1 - k * inside * inside;
            return bilinear(p, 32 + f * px, 28 + f * py);
        });
        EXPECT_LT(error(image, expected), floatError) << name << ' ' << scale;
    }
}

TEST(Geometry, PerspectiveBringsTheCornersToFourPoints) {
    Picture p = noise(50, 40, 44);
    p.x0 = 6, p.y0 = -4;
    // A map and its inverse, both written out.
    const double k[3][3] = {{1.1, 0.2, 5}, {-0.1, 0.9, 3}, {0.002, -0.001, 1}};
    auto forth = [&](double x, double y) {
        double w = k[2][0] * x + k[2][1] * y + k[2][2];
        return Numbers{(k[0][0] * x + k[0][1] * y + k[0][2]) / w, (k[1][0] * x + k[1][1] * y + k[1][2]) / w};
    };
    auto back = [&](double x, double y) {
        // The x and y whose images these are, from two linear equations.
        double a = k[0][0] - x * k[2][0], b = k[0][1] - x * k[2][1], e = x * k[2][2] - k[0][2];
        double c = k[1][0] - y * k[2][0], d = k[1][1] - y * k[2][1], f = y * k[2][2] - k[1][2];
        double det = a * d - b * c;
        return Point{(e * d - b * f) / det, (a * f - e * c) / det};
    };
    Values values{{"inputImage", imageOf(p)},
                  {"inputBottomLeft", forth(6, -4)},
                  {"inputBottomRight", forth(56, -4)},
                  {"inputTopRight", forth(56, 36)},
                  {"inputTopLeft", forth(6, 36)}};
    Image image = filter("CIPerspectiveTransform", values);
    // Whole pixels of the result.
    Rect inside = image->extent().grown(-1, -1).integral();
    Picture expected =
        filled(int(inside.x0), int(inside.y0), int(inside.width()), int(inside.height()), [&](int x, int y) {
            Point s = back(x + 0.5, y + 0.5);
            return bilinear(p, s.x, s.y);
        });
    EXPECT_LT(error(image, expected), floatError);
    EXPECT_NEAR(image->extent().x0, forth(6, -4)[0], 1e-9);
    EXPECT_NEAR(image->extent().y1, forth(6, 36)[1], 1e-9);
    // Three corners on a line make no quadrilateral, nor do all on one point.
    values["inputTopRight"] = values["inputTopLeft"] = values["inputBottomRight"];
    EXPECT_TRUE(filter("CIPerspectiveTransform", values)->extent().isEmpty());
}

TEST(Geometry, Twirl) {
    Picture p = noise(60, 60, 14);
    Picture expected = filled(-5, -5, 70, 70, [&](int x, int y) {
        double dx = x + 0.5 - 30, dy = y + 0.5 - 28, d = std::hypot(dx, dy), t = std::max(0.0, 1 - d / 25);
        double turn = -2 * t * t;
        return bilinear(p, 30 + dx * std::cos(turn) - dy * std::sin(turn),
                        28 + dx * std::sin(turn) + dy * std::cos(turn));
    });
    Image image = filter("CITwirlDistortion", {{"inputImage", imageOf(p)},
                                               {"inputCenter", Numbers{30, 28}},
                                               {"inputRadius", 25.0},
                                               {"inputAngle", 2.0}});
    EXPECT_LT(error(image, expected), 1e-4); // a turn's float error times the steepest edge
}

// ---------------------------------------------------------------------------------------- generators

TEST(Generators, GradientsAndConstants) {
    Color from{1, 0.5, 0, 1}, to{0, 0.2, 0.8, 0.5};
    auto mixed = [&](double t) {
        t = std::clamp(t, 0.0, 1.0);
        double a[4] = {linear(from.r), linear(from.g), linear(from.b), 1};
        double b[4] = {linear(to.r) * to.a, linear(to.g) * to.a, linear(to.b) * to.a, to.a};
        Pixel p;
        for (int c = 0; c < 4; ++c) p[c] = a[c] + t * (b[c] - a[c]);
        return p;
    };
    Values colors{{"inputColor0", from}, {"inputColor1", to}};
    Values linear = colors, radial = colors;
    linear["inputPoint0"] = Numbers{10, 5}, linear["inputPoint1"] = Numbers{60, 45};
    radial["inputCenter"] = Numbers{20, 30}, radial["inputRadius0"] = 5.0, radial["inputRadius1"] = 35.0;
    Picture expected = filled(-20, -10, 120, 80, [&](int x, int y) {
        return mixed(((x + 0.5 - 10) * 50 + (y + 0.5 - 5) * 40) / (50 * 50 + 40 * 40));
    });
    EXPECT_LT(error(filter("CILinearGradient", linear), expected), floatError);
    expected = filled(-20, -10, 120, 80,
                      [&](int x, int y) { return mixed((std::hypot(x + 0.5 - 20, y + 0.5 - 30) - 5) / 30); });
    EXPECT_LT(error(filter("CIRadialGradient", radial), expected), floatError);
    EXPECT_LT(error(filter("CIConstantColorGenerator", {{"inputColor", to}}),
                    filled(-1000000, 5, 3, 3, [&](int, int) { return mixed(1); })),
              floatError);
}

TEST(Generators, CheckerboardIsPlainAwayFromItsEdges) {
    Image image = filter("CICheckerboardGenerator", {{"inputCenter", Numbers{7, 3}}, {"inputWidth", 10.0}});
    EXPECT_TRUE(image->extent().isInfinite());
    Picture got = rendered(image, -600, -40, 1200, 80);
    int tested = 0;
    for (int y = -40; y < 40; ++y)
        for (int x = -600; x < 600; ++x) {
            int fx = ((x - 7) % 10 + 10) % 10, fy = ((y - 3) % 10 + 10) % 10;
            if (fx == 0 || fx == 9 || fy == 0 || fy == 9) continue;
            int squares = (x - 7 - fx) / 10 + (y - 3 - fy) / 10;
            ASSERT_NEAR(got.get(x, y)[0], squares % 2 == 0 ? 1 : 0, 1e-3) << x << ' ' << y;
            ++tested;
        }
    EXPECT_GT(tested, 50000);
}

// --------------------------------------------------------------------------------------- compositing

TEST(Generators, StripesBeginWithTheSecondColourAtTheCentre) {
    // As Core Image draws it: width 50 around 0, from 0 to 50 the second colour.
    Values values{{"inputCenter", Numbers{0, 0}},
                  {"inputColor0", Color{0, 1, 0, 1}},
                  {"inputColor1", Color{1, 0, 0, 1}},
                  {"inputWidth", 50.0}};
    Picture expected = filled(-500, -3, 1000, 5, [](int x, int) {
        return ((x + 1000) / 50) % 2 == 0 ? Pixel{1, 0, 0, 1} : Pixel{0, 1, 0, 1};
    });
    EXPECT_LT(error(filter("CIStripesGenerator", values), expected), floatError);
    // Without sharpness a ramp from the middle of one stripe to that of the next.
    values["inputSharpness"] = 0.0;
    Picture ramp = filled(-25, 0, 50, 1, [](int x, int) {
        double t = (x + 25.5) / 50;
        return Pixel{t, 1 - t, 0, 1};
    });
    EXPECT_LT(error(filter("CIStripesGenerator", values), ramp), floatError);
}

TEST(Transitions, DissolveMixesLight) {
    Picture p = noise(30, 20, 50), q = noise(30, 20, 51);
    q.x0 = 12;
    Picture expected = filled(-5, -5, 60, 30, [&](int x, int y) {
        Pixel out;
        for (int c = 0; c < 4; ++c) out[c] = 0.7 * p.get(x, y)[c] + 0.3 * q.get(x, y)[c];
        return out;
    });
    Values values{{"inputImage", imageOf(p)}, {"inputTargetImage", imageOf(q)}, {"inputTime", 0.3}};
    EXPECT_LT(error(filter("CIDissolveTransition", values), expected), floatError);
    EXPECT_EQ(filter("CIDissolveTransition", {{"inputTargetImage", imageOf(q)}}), nullptr);
}

TEST(Transitions, SwipeMovesABarOverTheExtent) {
    Picture p = noise(60, 40, 52), q = noise(60, 40, 53);
    double angle = 0.6, width = 25, opacity = 0.8, time = 0.45;
    const Pixel color{0.5, 0, 0, 0.5};
    Picture expected = filled(0, 0, 60, 40, [&](int x, int y) {
        // Where the bar's front is, between the corners that come first and last.
        double dx = std::cos(angle), dy = std::sin(angle);
        double first = 5 * dx + 3 * dy, last = 55 * dx + 33 * dy;
        double front = first + time * (last - first + width);
        double t = std::clamp((front - (x + 0.5) * dx - (y + 0.5) * dy) / width, 0.0, 1.0);
        double k = opacity * (1 - std::abs(2 * t - 1));
        Pixel out;
        for (int c = 0; c < 4; ++c)
            out[c] = (1 - k) * ((1 - t) * p.get(x, y)[c] + t * q.get(x, y)[c]) + k * color[c];
        return out;
    });
    Values values{{"inputImage", imageOf(p)},
                  {"inputTargetImage", imageOf(q)},
                  {"inputExtent", Numbers{5, 3, 50, 30}},
                  {"inputColor", Color{1, 0, 0, 0.5}},
                  {"inputTime", time},
                  {"inputAngle", angle},
                  {"inputWidth", width},
                  {"inputOpacity", opacity}};
    EXPECT_LT(error(filter("CISwipeTransition", values), expected), floatError);
    // Over all of it, from the one to the other.
    values["inputExtent"] = Numbers{0, 0, 60, 40};
    values["inputTime"] = 0.0;
    EXPECT_LT(error(filter("CISwipeTransition", values), p), floatError);
    values["inputTime"] = 1.0;
    EXPECT_LT(error(filter("CISwipeTransition", values), q), 5 * floatError);
}

TEST(Transitions, SwipeIsAsCoreImageDrawsIt) {
    // Pixels of a picture that Core Image made, with those of the two pictures it made it from: place, then
    // 8-bit colours of the one, the target and the result.
    struct Sample {
        int x, y;
        std::array<int, 3> image, target, result;
    };
    const Sample samples[] = {
        {60, 1399, {38, 105, 192}, {255, 255, 255}, {38, 105, 192}},
        {200, 1399, {33, 102, 187}, {255, 255, 255}, {80, 146, 186}},
        {300, 1399, {33, 98, 183}, {255, 255, 255}, {117, 213, 173}},
        {415, 1399, {30, 97, 180}, {255, 255, 255}, {96, 249, 141}},
        {520, 1399, {33, 96, 179}, {255, 255, 255}, {162, 241, 187}},
        {640, 1399, {32, 95, 178}, {255, 255, 255}, {236, 249, 241}},
        {250, 1199, {47, 125, 215}, {255, 255, 255}, {116, 208, 193}},
        {390, 1199, {49, 120, 211}, {255, 255, 255}, {95, 250, 142}},
        {560, 1199, {51, 118, 209}, {255, 255, 255}, {206, 244, 221}},
        {100, 599, {22, 18, 10}, {255, 255, 255}, {88, 138, 96}},
        {330, 599, {127, 116, 101}, {255, 255, 255}, {117, 247, 145}},
        {450, 599, {115, 109, 103}, {96, 54, 168}, {91, 173, 146}},
        {20, 199, {81, 77, 69}, {255, 255, 255}, {98, 123, 95}},
        {200, 199, {66, 65, 56}, {255, 255, 255}, {114, 237, 141}},
        {400, 199, {215, 227, 243}, {255, 255, 255}, {207, 252, 218}},
    };
    auto colorOf = [](const std::array<int, 3>& c) {
        return Color{c[0] / 255.0, c[1] / 255.0, c[2] / 255.0, 1};
    };
    for (const Sample& sample : samples) {
        Values values{{"inputImage", constant(colorOf(sample.image))},
                      {"inputTargetImage", constant(colorOf(sample.target))},
                      {"inputExtent", Numbers{0, 0, 500, 500}},
                      {"inputColor", colorOf({0x4A, 0xFF, 0x7E})},
                      {"inputTime", 0.4951334595680237},
                      {"inputAngle", 3.0},
                      {"inputWidth", 500.0},
                      {"inputOpacity", 0.9}};
        Pixel got =
            rendered(filter("CISwipeTransition", values), sample.x, sample.y, 1, 1).get(sample.x, sample.y);
        for (int c = 0; c < 3; ++c)
            EXPECT_NEAR(255 * coded(got[c]), sample.result[c], 1.5)
                << sample.x << ' ' << sample.y << ' ' << c;
    }
}

TEST(Compositing, EveryModeAgainstItsFormula) {
    Picture s = noise(41, 23, 15), d = noise(41, 23, 16);
    using Formula = std::function<double(double s, double d, double sa, double da)>;
    auto mode = [](std::function<double(double, double)> f) -> Formula {
        return [=](double s, double d, double sa, double da) {
            double cs = sa > 0 ? s / sa : 0, cd = da > 0 ? d / da : 0;
            return s * (1 - da) + d * (1 - sa) + sa * da * f(cs, cd);
        };
    };
    auto hard = [](double s, double d) { return s <= 0.5 ? 2 * s * d : 1 - 2 * (1 - s) * (1 - d); };
    struct Case {
        const char* name;
        Formula colour, alpha;
    };
    auto same = [](const char* name, Formula f) { return Case{name, f, f}; };
    Formula over = [](double s, double d, double sa, double) { return s + d * (1 - sa); };
    auto blendCase = [&](const char* name, std::function<double(double, double)> f) {
        return Case{name, mode(f), over};
    };
    std::vector<Case> cases{
        same("CISourceOverCompositing", over),
        same("CISourceAtopCompositing",
             [](double s, double d, double sa, double da) { return s * da + d * (1 - sa); }),
        same("CISourceInCompositing", [](double s, double, double, double da) { return s * da; }),
        same("CISourceOutCompositing", [](double s, double, double, double da) { return s * (1 - da); }),
        {"CIAdditionCompositing", [](double s, double d, double, double) { return s + d; },
         [](double s, double d, double, double) { return std::min(1.0, s + d); }},
        same("CIMaximumCompositing", [](double s, double d, double, double) { return std::max(s, d); }),
        same("CIMinimumCompositing", [](double s, double d, double, double) { return std::min(s, d); }),
        same("CIMultiplyCompositing", [](double s, double d, double, double) { return s * d; }),
        blendCase("CIMultiplyBlendMode", [](double s, double d) { return s * d; }),
        blendCase("CIScreenBlendMode", [](double s, double d) { return 1 - (1 - s) * (1 - d); }),
        blendCase("CIHardLightBlendMode", hard),
        blendCase("CIOverlayBlendMode", [=](double s, double d) { return hard(d, s); }),
        blendCase("CISoftLightBlendMode",
                  [](double s, double d) {
                      double bright = d <= 0.25 ? ((16 * d - 12) * d + 4) * d : std::sqrt(d);
                      return s <= 0.5 ? d - (1 - 2 * s) * d * (1 - d) : d + (2 * s - 1) * (bright - d);
                  }),
        blendCase("CIDarkenBlendMode", [](double s, double d) { return std::min(s, d); }),
        blendCase("CILightenBlendMode", [](double s, double d) { return std::max(s, d); }),
        blendCase("CIDifferenceBlendMode", [](double s, double d) { return std::abs(s - d); }),
        blendCase("CIExclusionBlendMode", [](double s, double d) { return s + d - 2 * s * d; }),
        blendCase("CIColorDodgeBlendMode",
                  [](double s, double d) { return d == 0   ? 0
                                                  : s >= 1 ? 1
                                                           : std::min(1.0, d / (1 - s)); }),
        blendCase("CIColorBurnBlendMode",
                  [](double s, double d) {
                      return d >= 1 ? 1 : s <= 0 ? 0 : 1 - std::min(1.0, (1 - d) / s);
                  }),
    };
    std::size_t registered = 0;
    for (const FilterInfo* info : allFilters())
        registered += info->name.ends_with("Compositing") || info->name.ends_with("BlendMode");
    constexpr std::size_t nonSeparable = 4; // tested below
    EXPECT_EQ(registered, cases.size() + nonSeparable) << "every mode has its case";
    for (const Case& c : cases) {
        Picture expected = filled(0, 0, 41, 23, [&](int x, int y) {
            Pixel p = s.get(x, y), q = d.get(x, y), out;
            for (int k = 0; k < 4; ++k) out[k] = (k < 3 ? c.colour : c.alpha)(p[k], q[k], p[3], q[3]);
            return out;
        });
        EXPECT_LT(error(filter(c.name, {{"inputImage", imageOf(s)}, {"inputBackgroundImage", imageOf(d)}}),
                        expected),
                  floatError)
            << c.name;
    }
}

TEST(Compositing, HueSaturationColorAndLuminosity) {
    // PDF's formulas, as the reference puts them.
    using Rgb = std::array<double, 3>;
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
    struct Case {
        const char* name;
        std::function<Rgb(const Rgb& s, const Rgb& d)> formula;
    };
    const Case cases[] = {
        {"CIHueBlendMode", [=](const Rgb& s, const Rgb& d) { return setLum(setSat(s, sat(d)), lum(d)); }},
        {"CISaturationBlendMode",
         [=](const Rgb& s, const Rgb& d) { return setLum(setSat(d, sat(s)), lum(d)); }},
        {"CIColorBlendMode", [=](const Rgb& s, const Rgb& d) { return setLum(s, lum(d)); }},
        {"CILuminosityBlendMode", [=](const Rgb& s, const Rgb& d) { return setLum(d, lum(s)); }},
    };
    Picture s = noise(41, 23, 25), d = noise(41, 23, 26);
    auto straight = [](const Pixel& p) {
        double f = p[3] > 0 ? 1 / p[3] : 0;
        return Rgb{p[0] * f, p[1] * f, p[2] * f};
    };
    for (const Case& c : cases) {
        Picture expected = filled(0, 0, 41, 23, [&](int x, int y) {
            Pixel p = s.get(x, y), q = d.get(x, y), out;
            Rgb mixed = c.formula(straight(p), straight(q));
            for (int k = 0; k < 3; ++k)
                out[k] = p[k] * (1 - q[3]) + q[k] * (1 - p[3]) + p[3] * q[3] * mixed[k];
            out[3] = p[3] + q[3] - p[3] * q[3];
            return out;
        });
        EXPECT_LT(error(filter(c.name, {{"inputImage", imageOf(s)}, {"inputBackgroundImage", imageOf(d)}}),
                        expected),
                  floatError)
            << c.name;
    }
}

// ------------------------------------------------------------------------------------- what is promised

namespace {

Values with(const Image& image, const char* key, double value) {
    return {{"inputImage", image}, {key, value}};
}

Image chainOfEight(Image image) {
    image = filter("CIExposureAdjust", with(image, "inputEV", 0.3));
    image = filter("CIGammaAdjust", with(image, "inputPower", 0.8));
    image = filter("CISepiaTone", with(image, "inputIntensity", 0.4));
    image = filter("CIVignette", with(image, "inputIntensity", 0.7));
    image = filter("CIHueAdjust", with(image, "inputAngle", 0.5));
    image = filter("CIColorControls", with(image, "inputSaturation", 1.2));
    image = filter("CIColorInvert", {{"inputImage", image}});
    return filter("CIGammaAdjust", with(image, "inputPower", 1.1));
}

/// Something of everything.
Image complicated(const Picture& p) {
    Image image = imageOf(p);
    Image turned = transform(chainOfEight(image), Affine::rotation(0.3).then(Affine::scale(1.3, 0.8)));
    Image blurred = filter("CIGaussianBlur", with(turned, "inputRadius", 9.5));
    Image twirled = filter(
        "CITwirlDistortion",
        {{"inputImage", composite(image, blurred)}, {"inputCenter", Numbers{60, 60}}, {"inputRadius", 70.0}});
    Image boxed = filter("CIBoxBlur", with(twirled, "inputRadius", 4.5));
    return composite(transform(boxed, Affine::scale(0.4, 0.4)),
                     composite(filter("CIGaussianBlur", with(boxed, "inputRadius", 2)), boxed));
}

class CountedRows : public RowSource {
  public:
    CountedRows(int w, int h) : layout_{w, h, Format::RGBA8, Alpha::opaque, color::ColorSpace::sRGB()} {}
    const PixelLayout& layout() const override { return layout_; }
    void readRows(int first, int count, std::uint8_t* out) override {
        if (inside_.exchange(true)) overlapped = true;
        for (int r = 0; r < count; ++r, out += 4 * layout_.width) {
            if (first + r == failAt) throw std::runtime_error("row cannot be read");
            std::fill_n(out, 4 * layout_.width, static_cast<std::uint8_t>(first + r));
            ++rows;
        }
        inside_ = false;
    }
    std::atomic<int> rows{0};
    std::atomic<bool> overlapped{false};
    int failAt = -1;

  private:
    PixelLayout layout_;
    std::atomic<bool> inside_{false};
};

} // namespace

TEST(Engine, TilesDoNotShow) {
    Image image = complicated(noise(130, 110, 17));
    setTileSize(4096);
    Picture whole = rendered(image, -40, -40, 200, 200);
    setTileSize(33);
    Picture tiled = rendered(image, -40, -40, 200, 200);
    setTileSize(0);
    // Places are counted in float from another corner, so that they round differently.
    EXPECT_LT(difference(whole, tiled), 1e-3);
    EXPECT_GT(whole.get(50, 50)[3], 0.1);
}

TEST(Engine, BothInstructionSetsAgree) {
    InstructionSet best = instructionSet();
    Image image = complicated(noise(130, 110, 18));
    ASSERT_TRUE(setInstructionSet(InstructionSet::sse2));
    EXPECT_EQ(instructionSet(), InstructionSet::sse2);
    Picture plain = rendered(image, -40, -40, 200, 200);
    setInstructionSet(best);
    EXPECT_LT(difference(plain, rendered(image, -40, -40, 200, 200)), 1e-3);
}

TEST(Engine, ThreadsDoNotShow) {
    Image image = complicated(noise(130, 110, 19));
    setTileSize(32);
    setThreadCount(1);
    Picture one = rendered(image, -40, -40, 200, 200);
    setThreadCount(5);
    Picture five = rendered(image, -40, -40, 200, 200);
    setThreadCount(0);
    setTileSize(0);
    EXPECT_EQ(difference(one, five), 0);
}

TEST(Engine, ReadsOnlyTheRowsItNeeds) {
    auto rows = std::make_shared<CountedRows>(500, 6400);
    Image image = chainOfEight(bitmap(rows));
    Image blurred = filter("CIGaussianBlur", with(image, "inputRadius", 5));
    EXPECT_EQ(rows->rows, 0);
    Picture got = rendered(bitmap(rows), 100, 6399 - 70, 10, 10);
    EXPECT_NEAR(got.get(100, 6399 - 70)[0], linear(70 / 255.), 1e-5);
    rows->rows = 0;
    rendered(image, 100, 3000, 10, 10);
    EXPECT_GT(rows->rows, 0);
    EXPECT_LE(rows->rows, 128);
    rows->rows = 0;
    rendered(crop(blurred, {0, 1000, 400, 1010}), 0, 0, 500, 6000);
    EXPECT_GT(rows->rows, 0);
    EXPECT_LE(rows->rows, 192);
    rows->rows = 0;
    rendered(bitmap(rows), 0, 0, 500, 6400);
    EXPECT_EQ(rows->rows, 6400) << "each row once";
    EXPECT_FALSE(rows->overlapped);
}

TEST(Engine, FailuresOfARowSourceReachTheCaller) {
    auto rows = std::make_shared<CountedRows>(100, 3000);
    rows->failAt = 2000;
    EXPECT_THROW(rendered(bitmap(rows), 0, 0, 100, 3000), std::runtime_error);
}

TEST(Engine, ChainsAreOnePass) {
    Image image = imageOf(noise(8, 8, 20));
    EXPECT_EQ(planSummary(chainOfEight(image)).passes, 1);
    EXPECT_EQ(planSummary(filter("CIGaussianBlur", with(chainOfEight(image), "inputRadius", 3))).passes, 2);
    Image inverted = image;
    for (int i = 0; i < 40; ++i) inverted = filter("CIColorInvert", {{"inputImage", inverted}});
    EXPECT_EQ(planSummary(inverted).steps, 2) << "matrices are one";
    Image turned = image;
    for (int i = 0; i < 40; ++i) turned = transform(turned, Affine::rotation(0.1));
    EXPECT_EQ(planSummary(turned).steps, 2) << "transforms are one";
    Image cropped = image;
    for (int i = 1; i < 4; ++i) cropped = crop(cropped, Rect{0, 0, 8, 8}.grown(-i, -i));
    EXPECT_EQ(planSummary(cropped).steps, 2) << "crops are one";
    EXPECT_NE(planSummary(cropped).text.find("crop"), std::string::npos);
}

TEST(Engine, ImagesReadTwiceAreComputedOnce) {
    // 2^40 evaluations if each reader computed its own.
    Image image = imageOf(noise(16, 16, 21, true));
    for (int i = 0; i < 40; ++i)
        image = filter("CIScreenBlendMode", {{"inputImage", image}, {"inputBackgroundImage", image}});
    EXPECT_NEAR(rendered(image, 0, 0, 16, 16).get(5, 5)[0], 1, 1e-4);
}

TEST(Engine, BlendsOverTheTargetAndLeavesTheRest) {
    std::vector<std::uint8_t> out(4 * 8 * 8, 100);
    PixelLayout layout{8, 8, Format::RGBA8, Alpha::opaque, nullptr};
    Options options{.blend = true, .working = nullptr, .colorManaged = false, .software = true};
    render(constant({1, 0, 0, 0.5}), {0, 0, 4, 4}, {layout, out.data(), 32}, {2, 1, 6, 5}, options);
    auto at = [&](int x, int y, int c) { return int(out[4 * ((7 - y) * 8 + x) + c]); };
    EXPECT_EQ(at(1, 1, 0), 100);
    EXPECT_EQ(at(2, 5, 0), 100);
    EXPECT_NEAR(at(2, 1, 0), 178, 1); // (255 + 100) / 2
    EXPECT_NEAR(at(5, 4, 1), 50, 1);
    EXPECT_EQ(at(6, 4, 1), 100);
}

TEST(Engine, FormatsComeBackAsTheyWere) {
    for (Format format :
         {Format::ARGB8, Format::RGBA8, Format::BGRA8, Format::RGBA16, Format::RGBAf, Format::Gray8})
        for (Alpha alpha : {Alpha::premultiplied, Alpha::straight, Alpha::opaque}) {
            PixelLayout layout{67, 5, format, alpha,
                               format == Format::Gray8 ? color::ColorSpace::deviceGray()
                                                       : color::ColorSpace::sRGB()};
            std::size_t row = 67 * bytesPerPixel(format);
            std::vector<std::uint8_t> in(row * 5), out(row * 5);
            bool first = format == Format::ARGB8;
            for (std::size_t i = 0; i < 67 * 5; ++i)
                for (int c = 0; c < (format == Format::Gray8 ? 1 : 4); ++c) {
                    bool isAlpha = c == (first ? 0 : 3);
                    int v = isAlpha && alpha == Alpha::opaque ? 255
                            : isAlpha                         ? 200 + int(i % 56)
                                                              : int((i * 37 + c * 11) % 200);
                    if (format == Format::RGBAf)
                        reinterpret_cast<float*>(in.data())[4 * i + c] = v / 255.f;
                    else if (format == Format::RGBA16)
                        reinterpret_cast<std::uint16_t*>(in.data())[4 * i + c] = std::uint16_t(v * 257);
                    else
                        in[bytesPerPixel(format) * i + c] = std::uint8_t(v);
                }
            render(bitmap(layout, in.data(), row, nullptr), {0, 0, 67, 5}, {layout, out.data(), row},
                   {0, 0, 67, 5});
            for (std::size_t i = 0; i < 67 * 5 * bytesPerPixel(format); ++i) {
                if (format == Format::RGBAf && i % 4 == 0)
                    ASSERT_NEAR(reinterpret_cast<float*>(in.data())[i / 4],
                                reinterpret_cast<float*>(out.data())[i / 4], 1e-5);
                else if (format == Format::RGBA16 && i % 2 == 0)
                    ASSERT_NEAR(reinterpret_cast<std::uint16_t*>(in.data())[i / 2],
                                reinterpret_cast<std::uint16_t*>(out.data())[i / 2], 2);
                else if (bytesPerPixel(format) <= 4)
                    ASSERT_NEAR(int(in[i]), int(out[i]), 1) << int(format) << int(alpha) << ' ' << i;
            }
        }
}

TEST(Engine, RefusesWhatCannotBe) {
    std::uint8_t pixels[64] = {};
    PixelLayout layout{4, 4};
    EXPECT_THROW(bitmap(layout, nullptr, 16, nullptr), std::invalid_argument);
    EXPECT_THROW(bitmap(layout, pixels, 15, nullptr), std::invalid_argument);
    EXPECT_THROW(bitmap({0, 4}, pixels, 16, nullptr), std::invalid_argument);
    EXPECT_THROW(bitmap({4, 4, Format::Gray8}, pixels, 16, nullptr), std::invalid_argument);
    EXPECT_THROW(bitmap(nullptr), std::invalid_argument);
    Image image = bitmap(layout, pixels, 16, nullptr);
    EXPECT_THROW(transform(image, Affine::scale(NAN, 1)), std::invalid_argument);
    EXPECT_TRUE(transform(image, Affine::scale(0, 1))->extent().isEmpty());
    EXPECT_THROW(render(image, Rect::infinite(), {layout, pixels, 16}, {0, 0, 4, 4}), std::invalid_argument);
    EXPECT_THROW(render(image, {0, 0, 4, 4}, {layout, nullptr, 16}, {0, 0, 4, 4}), std::invalid_argument);
    EXPECT_THROW(filter("CIGammaAdjust", {{"inputImage", image}, {"inputPower", std::string("x")}}),
                 std::invalid_argument);
    EXPECT_EQ(transform(nullptr, {}), nullptr);
    EXPECT_EQ(filter("CISepiaTone", {}), nullptr);
}

TEST(Engine, HostileNumbersEndInPixels) {
    Image image = imageOf(noise(24, 24, 22));
    for (const FilterInfo* info : allFilters())
        for (double bad :
             {double(NAN), double(INFINITY), -double(INFINITY), -1e9, 1e9, 1e300, -1e-300, 0.0}) {
            Values values;
            for (const InputInfo& input : info->inputs) {
                if (input.kind == InputKind::image) values[input.key] = image;
                if (input.kind == InputKind::number) values[input.key] = bad;
                if (input.kind == InputKind::vector) values[input.key] = Numbers{bad, bad, bad, bad};
                if (input.kind == InputKind::color) values[input.key] = Color{bad, bad, bad, bad};
                if (input.kind == InputKind::transform) values[input.key] = Affine{bad, 0, 0, 1, bad, 0};
            }
            Image result = engine::apply(*info, values);
            ASSERT_NE(result, nullptr) << info->name;
            std::vector<std::uint8_t> out(4 * 16 * 16, 77);
            PixelLayout layout{16, 16};
            ASSERT_NO_THROW(render(result, {0, 0, 16, 16}, {layout, out.data(), 64}, {0, 0, 16, 16}))
                << info->name << ' ' << bad;
            // Premultiplied bytes never exceed their alpha.
            for (std::size_t i = 0; i < out.size(); ++i)
                ASSERT_LE(out[i], out[i | 3]) << info->name << ' ' << bad;
        }
}

TEST(Engine, EndlessImagesMadeTinyStillRender) {
    Image board = filter("CICheckerboardGenerator", {});
    Picture got = rendered(transform(board, Affine::scale(1e-7, 1e-7)), -8, -8, 16, 16);
    EXPECT_NEAR(got.get(3, 3)[3], 1, 1e-4);
}

TEST(Engine, FiltersDescribeThemselves) {
    EXPECT_EQ(findFilter("CINoSuchFilter"), nullptr);
    std::string last;
    for (const FilterInfo* info : allFilters()) {
        EXPECT_LT(last, info->name);
        last = info->name;
        EXPECT_FALSE(info->description.empty()) << info->name;
        // Those that automatic adjustment alone makes are in no category.
        bool hidden = info->name == "CIFaceBalance" || info->name == "CIRedEyeCorrections";
        EXPECT_EQ(info->categories.empty(), hidden) << info->name;
        for (const InputInfo& input : info->inputs) {
            EXPECT_FALSE(input.displayName.empty());
            // Pictures, a message and a colour space have to be given.
            bool given = input.kind == InputKind::image || input.key == "inputMessage" ||
                         input.key == "inputColorSpace";
            if (!given) EXPECT_TRUE(input.defaultValue) << info->name << input.key;
        }
    }
}
