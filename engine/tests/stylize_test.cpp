// Filters that redraw a picture, against references in double precision.
#include "reference.h"

#include <algorithm>

using namespace reference;

namespace {

/// Each pixel of the rectangle the mean of the pixels with the same cell.
Picture means(const Picture& p, int x0, int y0, int w, int h,
              const std::function<std::pair<int, int>(int, int)>& cell) {
    std::map<std::pair<int, int>, std::pair<Pixel, int>> sums;
    for (int y = y0 - 40; y < y0 + h + 40; ++y)
        for (int x = x0 - 40; x < x0 + w + 40; ++x) {
            auto& [sum, count] = sums[cell(x, y)];
            for (int c = 0; c < 4; ++c) sum[c] += p.get(x, y)[c];
            ++count;
        }
    return filled(x0, y0, w, h, [&](int x, int y) {
        auto [sum, count] = sums[cell(x, y)];
        for (double& v : sum) v /= count;
        return sum;
    });
}

} // namespace

TEST(Stylize, SquaresOfOneColour) {
    Picture p = noise(41, 33, 91);
    for (double scale : {1.0, 7.0, 9.5}) {
        Picture expected = means(p, -12, -12, 65, 57, [&](int x, int y) {
            return std::pair(int(std::floor((x + 0.5 - 20.3) / scale + 0.5)),
                             int(std::floor((y + 0.5 - 11) / scale + 0.5)));
        });
        Image image =
            filter("CIPixellate",
                   {{"inputImage", imageOf(p)}, {"inputScale", scale}, {"inputCenter", Numbers{20.3, 11}}});
        EXPECT_LT(error(image, expected), floatError) << scale;
        EXPECT_LT(difference(inTiles(image, -12, -12, 65, 57), expected), floatError) << scale;
        EXPECT_TRUE(image->extent().contains({0, 0, 41, 33}));
    }
}

TEST(Stylize, HexagonsOfOneColour) {
    Picture p = noise(41, 33, 92);
    double side = 4.7;
    Picture expected = means(p, -12, -12, 65, 57, [&](int x, int y) {
        // The nearest of all centres, of which every second row is shifted by half the distance.
        std::pair<int, int> best;
        double least = 1e30;
        for (int j = -15; j <= 15; ++j)
            for (int i = -15; i <= 15; ++i) {
                double cx = 20 + side * std::sqrt(3.) * (i + (j % 2 ? 0.5 : 0)), cy = 11 + side * 1.5 * j;
                double d = std::hypot(x + 0.5 - cx, y + 0.5 - cy);
                if (d < least - 1e-12) least = d, best = {i, j};
            }
        return best;
    });
    Image image =
        filter("CIHexagonalPixellate",
               {{"inputImage", imageOf(p)}, {"inputScale", side}, {"inputCenter", Numbers{20, 11}}});
    EXPECT_LT(error(image, expected), floatError);
    EXPECT_LT(difference(inTiles(image, -12, -12, 65, 57), expected), floatError);
}

TEST(Stylize, CrystalsAreMeansOfConnectedPlaces) {
    // A ramp tells what a crystal's mean is taken from: its colour is the middle of its place.
    double radius = 6;
    Picture ramp = filled(0, 0, 120, 120, [](int x, int y) { return Pixel{x / 120., y / 120., 0.5, 1}; });
    Values values{{"inputImage", imageOf(ramp)}, {"inputRadius", radius}, {"inputCenter", Numbers{3, 4}}};
    Image image = filter("CICrystallize", values);
    Picture got = rendered(image, 30, 30, 60, 60);
    EXPECT_LT(difference(inTiles(image, 30, 30, 60, 60), got), 1e-6);
    std::map<std::pair<long, long>, std::array<double, 3>> crystals; // by colour: sums of x and y, count
    for (int y = 30; y < 90; ++y)
        for (int x = 30; x < 90; ++x) {
            Pixel q = got.get(x, y);
            EXPECT_NEAR(q[3], 1, 1e-6);
            EXPECT_NEAR(q[2], 0.5, 1e-6);
            EXPECT_LT(std::hypot(q[0] * 120 - x, q[1] * 120 - y), 4 * radius) << x << ' ' << y;
            auto& sum = crystals[{std::lround(q[0] * 1e6), std::lround(q[1] * 1e6)}];
            sum[0] += x, sum[1] += y, sum[2] += 1;
        }
    int whole = 0;
    for (const auto& [color, sum] : crystals) {
        double x = color.first * 120e-6, y = color.second * 120e-6;
        if (x < 50 || x > 70 || y < 50 || y > 70) continue;
        EXPECT_NEAR(sum[0] / sum[2], x, 0.01);
        EXPECT_NEAR(sum[1] / sum[2], y, 0.01);
        ++whole;
    }
    EXPECT_GT(whole, 0);
    // As many as there are discs of that radius in the area, and those cut by its edges.
    double discs = 3600 / (3.14159 * radius * radius);
    EXPECT_GT(crystals.size(), discs * 0.8);
    EXPECT_LT(crystals.size(), discs * 2);

    // The same crystals, no farther than the radius from their points.
    Picture dots = rendered(filter("CIPointillize", values), 30, 30, 60, 60);
    double area = 0;
    for (int y = 30; y < 90; ++y)
        for (int x = 30; x < 90; ++x) {
            double a = dots.get(x, y)[3];
            for (int c = 0; c < 4; ++c) EXPECT_NEAR(dots.get(x, y)[c], a * got.get(x, y)[c], 1e-6);
            area += a / 3600;
        }
    EXPECT_GT(area, 0.4);
    EXPECT_LT(area, 0.95);
}

TEST(Stylize, BloomScreensWithTheBlur) {
    Picture p = noise(50, 40, 93);
    Picture blurred = trueGaussian(p, 4);
    Picture expected = filled(-8, -8, 66, 56, [&](int x, int y) {
        Pixel out = p.get(x, y);
        for (int c = 0; c < 4; ++c) out[c] += 0.7 * (1 - (1 - out[c]) * (1 - blurred.get(x, y)[c]) - out[c]);
        return out;
    });
    Values values{{"inputImage", imageOf(p)}, {"inputRadius", 4.0}, {"inputIntensity", 0.7}};
    EXPECT_LT(error(filter("CIBloom", values), expected), halfStep);
    EXPECT_EQ(filter("CIBloom", values)->extent(), (Rect{-12, -12, 62, 52}));
}

TEST(Stylize, GloomMultipliesWithTheBlur) {
    Picture p = noise(50, 40, 94);
    Picture wide = filled(-20, -20, 90, 80, [&](int x, int y) { return clamped(p, x, y); });
    Picture blurred = trueGaussian(wide, 4);
    Picture expected = filled(0, 0, 50, 40, [&](int x, int y) {
        Pixel out = p.get(x, y), q = blurred.get(x, y);
        for (int c = 0; c < 3; ++c) out[c] *= 0.3 + 0.7 * q[c] / q[3];
        return out;
    });
    Values values{{"inputImage", imageOf(p)}, {"inputRadius", 4.0}, {"inputIntensity", 0.7}};
    EXPECT_LT(error(filter("CIGloom", values), expected), halfStep);
    EXPECT_EQ(filter("CIGloom", values)->extent(), (Rect{0, 0, 50, 40}));
}

TEST(Stylize, EdgesAreSlopes) {
    Picture p = noise(41, 33, 95);
    Picture expected = filled(0, 0, 41, 33, [&](int x, int y) {
        Pixel out = p.get(x, y);
        for (int c = 0; c < 3; ++c) {
            double dx = 0, dy = 0;
            for (int k = -1; k <= 1; ++k) {
                double weight = k ? 1 : 2;
                dx += weight * (clamped(p, x + 1, y + k)[c] - clamped(p, x - 1, y + k)[c]);
                dy += weight * (clamped(p, x + k, y + 1)[c] - clamped(p, x + k, y - 1)[c]);
            }
            out[c] = std::min(1.6 * std::hypot(dx, dy) / 4, out[3]);
        }
        return out;
    });
    Image image = filter("CIEdges", {{"inputImage", imageOf(p)}, {"inputIntensity", 1.6}});
    EXPECT_LT(error(image, expected), floatError);
    EXPECT_LT(difference(inTiles(image, 0, 0, 41, 33), expected), floatError);
}

TEST(Stylize, ASpotLightFallsOffFromItsAxis) {
    Picture p = noise(61, 43, 96);
    const double from[] = {50, 60, 40}, to[] = {20, 15, 0};
    for (double concentration : {0.1, 1.2}) {
        Picture expected = mapped(p, [](Pixel q) { return q; });
        for (int y = 0; y < 43; ++y)
            for (int x = 0; x < 61; ++x) {
                double ray[] = {x + 0.5 - from[0], y + 0.5 - from[1], -from[2]}, dot = 0;
                for (int k = 0; k < 3; ++k) dot += ray[k] * (to[k] - from[k]);
                dot /= std::hypot(ray[0], ray[1], ray[2]) *
                       std::hypot(to[0] - from[0], to[1] - from[1], to[2] - from[2]);
                double lit = 2 * std::pow(std::max(dot, 0.0), 1 / concentration);
                const double color[] = {1, linear(0.8), linear(0.4)};
                for (int c = 0; c < 3; ++c) expected.at(x, y)[c] *= lit * color[c];
            }
        Values values{{"inputImage", imageOf(p)},
                      {"inputLightPosition", Numbers{50, 60, 40}},
                      {"inputLightPointsAt", Numbers{20, 15, 0}},
                      {"inputBrightness", 2.0},
                      {"inputConcentration", concentration},
                      {"inputColor", Color{1, 0.8, 0.4, 1}}};
        EXPECT_LT(error(filter("CISpotLight", values), expected), 5 * floatError) << concentration;
    }
}

TEST(Stylize, LinesAreBlackWhereEdgesAreSteep) {
    Picture p = noise(41, 33, 97);
    Image image = imageOf(p);
    Image edges = filter(
        "CIEdges",
        {{"inputImage", filter("CINoiseReduction",
                               {{"inputImage", image}, {"inputNoiseLevel", 0.05}, {"inputSharpness", 0.3}})},
         {"inputIntensity", 0.8}});
    Picture steep = rendered(edges, 0, 0, 41, 33);
    Picture expected = filled(0, 0, 41, 33, [&](int x, int y) {
        Pixel q = steep.get(x, y);
        double edge = 0.2126 * q[0] + 0.7152 * q[1] + 0.0722 * q[2];
        return Pixel{0, 0, 0, q[3] * std::clamp((edge - 0.2) * 6 + 0.5, 0.0, 1.0)};
    });
    Values values{{"inputImage", image},       {"inputNRNoiseLevel", 0.05}, {"inputNRSharpness", 0.3},
                  {"inputEdgeIntensity", 0.8}, {"inputThreshold", 0.2},     {"inputContrast", 6.0}};
    EXPECT_LT(error(filter("CILineOverlay", values), expected), floatError);
    EXPECT_EQ(filter("CILineOverlay", {}), nullptr);
}

TEST(Stylize, WoodcutsAreBlackWhereItIsDarkerThanAround) {
    Picture p = noise(50, 40, 98, true);
    Picture wide = filled(-25, -25, 100, 90, [&](int x, int y) { return clamped(p, x, y); });
    Picture close = trueGaussian(wide, 1), far = trueGaussian(wide, 3);
    auto luminance = [](const Pixel& q) { return 0.2126 * q[0] + 0.7152 * q[1] + 0.0722 * q[2]; };
    Picture expected = filled(0, 0, 50, 40, [&](int x, int y) {
        double ratio = (luminance(close.get(x, y)) + 1e-3) / (luminance(far.get(x, y)) + 1e-3);
        double v = std::clamp(1 + 12 * (ratio - 0.97), 0.0, 1.0);
        return Pixel{v, v, v, 1};
    });
    // The engine's Gaussians end where they are small, and their ratio is taken twelvefold.
    EXPECT_LT(error(filter("CIEdgeWork", {{"inputImage", imageOf(p)}}), expected), 12 * halfStep);
    Image flat = crop(constant({0.5, 0.2, 0.1, 1}), {0, 0, 20, 20});
    for (const Pixel& q : rendered(filter("CIEdgeWork", {{"inputImage", flat}}), 0, 0, 20, 20).pixels)
        for (double v : q) EXPECT_NEAR(v, 1, 1e-5);
}

TEST(Stylize, SpotColoursTakeThePlaceOfNearOnes) {
    Picture p = noise(61, 43, 99);
    const struct {
        double centre[3], to[3], closeness, contrast;
    } spots[] = {{{0.2, 0.3, 0.4}, {1, 0, 0.5}, 0.3, 0.5},
                 {{0.7, 0.8, 0.6}, {0.1, 0.9, 0.3}, 0.4, 0},
                 {{0.9, 0.4, 0.6}, {0.2, 0.2, 1}, 0.35, 0.9}};
    Picture expected = mapped(p, [&](Pixel q) {
        Pixel out = q;
        for (const auto& spot : spots) {
            double square = 0;
            for (int c = 0; c < 3; ++c) square += std::pow(coded(q[c]) - spot.centre[c], 2);
            double t = (spot.closeness - std::sqrt(square)) / (spot.closeness * (1 - spot.contrast));
            t = std::clamp(t, 0.0, 1.0);
            for (int c = 0; c < 3; ++c) out[c] += t * (linear(spot.to[c]) - out[c]);
        }
        return out;
    });
    Values values{{"inputImage", imageOf(p)}};
    for (int i = 0; i < 3; ++i) {
        auto key = [&](const char* name) { return name + std::to_string(i + 1); };
        const auto& [from, to, closeness, contrast] = spots[i];
        values[key("inputCenterColor")] = Color{from[0], from[1], from[2], 1};
        values[key("inputReplacementColor")] = Color{to[0], to[1], to[2], 1};
        values[key("inputCloseness")] = closeness;
        values[key("inputContrast")] = contrast;
    }
    // Coded components are good to 7e-6, the steepest ramp makes 29 of each.
    EXPECT_LT(error(filter("CISpotColor", values), expected), 1e-3);
}

namespace {

/// A letter H that leans, as it is in a mask that Core Image made a height field of: its corners.
constexpr double letter[][2] = {{198.0, 592.0}, {256.1, 584.7}, {231.4, 512.2}, {298.1, 503.8},
                                {323.2, 576.8}, {381.3, 570.0}, {316.8, 379.3}, {258.3, 386.2},
                                {283.9, 460.9}, {216.6, 468.5}, {191.4, 394.1}, {132.9, 401.1}};

bool inLetter(double x, double y) {
    bool inside = false;
    for (std::size_t i = 0, j = std::size(letter) - 1; i < std::size(letter); j = i++) {
        const auto &p = letter[i], &q = letter[j];
        if ((p[1] > y) != (q[1] > y) && x < (q[0] - p[0]) * (y - p[1]) / (q[1] - p[1]) + p[0])
            inside = !inside;
    }
    return inside;
}

} // namespace

TEST(Stylize, HeightsAreAsCoreImageMakesThem) {
    // Pixels of the left half of the letter, away from those that follow, with the 8-bit grays that Core
    // Image gave them for the radius 25.
    const struct {
        int x, y, gray;
    } samples[] = {{198, 576, 137}, {224, 576, 167}, {198, 554, 187}, {224, 554, 199}, {198, 532, 211},
                   {224, 532, 203}, {198, 510, 224}, {224, 510, 212}, {172, 488, 184}, {198, 488, 228},
                   {224, 488, 220}, {250, 488, 206}, {172, 466, 204}, {198, 466, 215}, {172, 444, 208},
                   {198, 444, 184}, {146, 422, 141}, {172, 422, 194}, {198, 422, 125}, {172, 400, 128}};
    Picture mask = filled(30, 270, 460, 430, [](int x, int y) {
        double v = 0;
        for (int k = 0; k < 16; ++k)
            v += inLetter(x + 0.125 + 0.25 * (k % 4), y + 0.125 + 0.25 * (k / 4)) / 16.;
        return Pixel{v, v, v, 1};
    });
    Image image = filter("CIHeightFieldFromMask", {{"inputImage", imageOf(mask)}, {"inputRadius", 25.0}});
    EXPECT_EQ(image->extent(), (Rect{30, 270, 490, 700}));
    double sum = 0;
    for (const auto& sample : samples) {
        double got = 255 * coded(rendered(image, sample.x, sample.y, 1, 1).get(sample.x, sample.y)[0]);
        // The corners were found to a quarter of a pixel.
        EXPECT_NEAR(got, sample.gray, 4) << sample.x << ' ' << sample.y;
        sum += std::abs(got - sample.gray);
    }
    EXPECT_LT(sum / std::size(samples), 1.5);
}

TEST(Stylize, HeightsAreBlursCutOutAgainAndAgain) {
    Picture mask = noise(40, 30, 100, true);
    Picture field = mask;
    for (double sigma : {4.0, 2.0, 1.0}) {
        Picture wide = filled(-25, -25, 90, 80, [&](int x, int y) { return clamped(field, x, y); });
        Picture blurred = trueGaussian(wide, sigma);
        field = filled(0, 0, 40, 30, [&](int x, int y) {
            Pixel out = mask.get(x, y);
            for (int c = 0; c < 3; ++c) out[c] *= blurred.get(x, y)[c];
            return out;
        });
    }
    Image image = filter("CIHeightFieldFromMask", {{"inputImage", imageOf(mask)}, {"inputRadius", 4.0}});
    EXPECT_LT(error(image, field), halfStep);
    EXPECT_LT(difference(inTiles(image, 0, 0, 40, 30), field), halfStep);
    Image unchanged = imageOf(mask);
    EXPECT_EQ(filter("CIHeightFieldFromMask", {{"inputImage", unchanged}, {"inputRadius", 0.0}}), unchanged);
}
