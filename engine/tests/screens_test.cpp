// Halftones, against patterns in double precision and against the light that they have to keep.
#include "reference.h"

using namespace reference;

namespace {

double wave(double x) { return std::acos(std::cos(x * M_PI)) / M_PI; } // 0 at even, 1 at odd numbers

double dots(double u, double v) {
    double s = (wave(u) + wave(v)) / 2;
    return s < 0.5 ? 2 * s * s : 1 - 2 * (1 - s) * (1 - s);
}

/// A ramp around the value of a pattern at which so much light of 0..1 is left on average.
double white(double light, double pattern, double soft) {
    auto mean = [=](double top) { // of clamp((top - pattern) / soft), over all patterns
        double full = std::max(0.0, std::min(1.0, top - soft)), end = std::min(1.0, top);
        return full + (end - full) * ((top - full) + (top - end)) / (2 * soft);
    };
    double low = 0, high = 1 + soft;
    for (int i = 0; i < 60; ++i) (mean((low + high) / 2) < light ? low : high) = (low + high) / 2;
    return std::clamp((low - pattern) / soft, 0.0, 1.0);
}

/// A pattern's value at a pixel, in a screen of this width, turned by 0.3 (and more) around (12, 7).
double at(const std::function<double(double, double)>& pattern, int x, int y, double width, double turn = 0) {
    double px = x + 0.5 - 12, py = y + 0.5 - 7, angle = 0.3 + turn;
    return pattern((px * std::cos(angle) + py * std::sin(angle)) * 2 / width,
                   (py * std::cos(angle) - px * std::sin(angle)) * 2 / width);
}

Values screen(const Image& image, double width) {
    return {
        {"inputImage", image}, {"inputCenter", Numbers{12, 7}}, {"inputAngle", 0.3}, {"inputWidth", width}};
}

Pixel straight(Pixel q) {
    for (int c = 0; c < 3; ++c) q[c] = q[3] > 0 ? q[c] / q[3] : 0;
    return q;
}

Pixel mean(const Picture& p) {
    Pixel sum{};
    for (const Pixel& q : p.pixels)
        for (int c = 0; c < 4; ++c) sum[c] += q[c] / static_cast<double>(p.pixels.size());
    return sum;
}

// A pattern's edge is steep: its place in single precision times 1 / soft.
constexpr double patternError = 2e-4;

} // namespace

TEST(Screens, CompareLightWithAPattern) {
    Picture p = noise(70, 30, 90);
    struct {
        const char* name;
        std::function<double(double, double)> pattern;
    } screens[] = {
        {"CILineScreen", [](double, double v) { return wave(v); }},
        {"CIDotScreen", dots},
        {"CIHatchedScreen", [](double u, double v) { return std::pow(std::max(wave(u), wave(v)), 2); }},
        {"CICircularScreen", [](double u, double v) { return wave(std::hypot(u, v)); }}};
    for (auto& [name, each] : screens) {
        auto& pattern = each;
        for (double sharpness : {0.2, 0.7}) {
            Values values = screen(imageOf(p), 9);
            values["inputSharpness"] = sharpness;
            Picture expected = filled(0, 0, 70, 30, [&](int x, int y) {
                Pixel q = straight(p.get(x, y));
                double light = 0.2126 * q[0] + 0.7152 * q[1] + 0.0722 * q[2];
                double gray = q[3] * white(light, at(pattern, x, y, 9), std::max(1 - sharpness, 2. / 9));
                return Pixel{gray, gray, gray, q[3]};
            });
            Image image = filter(name, values);
            EXPECT_LT(error(image, expected), patternError) << name;
            setTileSize(16);
            EXPECT_LT(error(image, expected), patternError) << name << " in tiles";
            setTileSize(0);
        }
    }
}

TEST(Screens, KeepTheLightOfAnArea) {
    for (const char* name : {"CILineScreen", "CIDotScreen", "CIHatchedScreen", "CICircularScreen"})
        for (double light : {0.0, 0.2, 0.5, 0.8, 1.0}) {
            Values values = screen(constant({coded(light), coded(light), coded(light), 1}), 12);
            values["inputSharpness"] = 0.9;
            Pixel m = mean(rendered(filter(name, values), 0, 0, 400, 400));
            EXPECT_NEAR(m[0], light, 0.01) << name;
        }
    Color brown{0.6, 0.4, 0.2, 1};
    Pixel m = mean(rendered(filter("CICMYKHalftone", screen(constant(brown), 12)), 0, 0, 400, 400));
    EXPECT_NEAR(m[0], linear(0.6), 0.02);
    EXPECT_NEAR(m[1], linear(0.4), 0.02);
    EXPECT_NEAR(m[2], linear(0.2), 0.02);
}

TEST(Screens, InksShareGray) {
    Picture p = noise(70, 30, 91);
    for (auto [gcr, ucr] : {std::pair(1.0, 0.5), {0.6, 0.9}, {0.0, 0.5}, {1.0, 0.0}}) {
        Values values = screen(imageOf(p), 10);
        values["inputGCR"] = gcr;
        values["inputUCR"] = ucr;
        Picture expected = filled(0, 0, 70, 30, [&, gcr = gcr, ucr = ucr](int x, int y) {
            Pixel q = straight(p.get(x, y)), out{0, 0, 0, q[3]};
            double gray = 1 - std::max({q[0], q[1], q[2]});
            double black = ucr > 0 ? gcr * std::max(0.0, gray - (1 - ucr)) / ucr : 0, soft = 0.3;
            const double turns[] = {M_PI / 12, 5 * M_PI / 12, 0};
            for (int c = 0; c < 3; ++c) {
                double light = black < 1 ? std::min(q[c] / (1 - black), 1.0) : 0;
                out[c] = q[3] * white(light, at(dots, x, y, 10, turns[c]), soft) *
                         white(1 - black, at(dots, x, y, 10, M_PI / 4), soft);
            }
            return out;
        });
        EXPECT_LT(error(filter("CICMYKHalftone", values), expected), patternError) << gcr << ' ' << ucr;
    }
}
