// Automatic adjustment: measures a reduced copy of the picture and chooses filters by the measurements.
#include "AutoAdjust.h"

#include "Attempt.h"

#include <algorithm>
#include <cmath>

namespace ci {

namespace {

using engine::Image;
using engine::Point;
using engine::Rect;

/// A pixel in straight sRGB.
struct Pixel {
    double r, g, b;
    double x, y; // its centre, in the picture's coordinates

    double high() const { return std::max({r, g, b}); }
    double low() const { return std::min({r, g, b}); }
    double luma() const { return 0.2126 * r + 0.7152 * g + 0.0722 * b; }
};
using Pixels = std::vector<Pixel>;

/// The pixels inside `area` that are at least half opaque, averaged down to at most `side` of them each way.
Pixels look(const Image& image, const Rect& area, double side) {
    Rect seen = area.intersect(image->extent());
    if (seen.isEmpty()) return {};
    double scale = std::min(1.0, side / std::max(seen.width(), seen.height()));
    int width = std::max(1, static_cast<int>(seen.width() * scale));
    int height = std::max(1, static_cast<int>(seen.height() * scale));
    std::vector<float> rendered(std::size_t(4) * width * height);
    engine::Target target{
        {width, height, engine::Format::RGBAf, engine::Alpha::straight, color::ColorSpace::sRGB()},
        rendered.data(),
        std::size_t(16) * width};
    engine::render(image, seen, target, Rect::ofSize(0, 0, width, height));
    Pixels pixels;
    for (int row = 0; row < height; ++row)
        for (int column = 0; column < width; ++column) {
            const float* p = &rendered[std::size_t(4) * (std::size_t(row) * width + column)];
            if (!(p[3] >= 0.5f)) continue;
            auto unit = [](float v) { return v > 0 ? std::min(double(v), 1.0) : 0.0; };
            pixels.push_back({unit(p[0]), unit(p[1]), unit(p[2]),
                              seen.x0 + (column + 0.5) * seen.width() / width,
                              seen.y1 - (row + 0.5) * seen.height() / height});
        }
    return pixels;
}

template <class Measure>
double mean(const Pixels& pixels, Measure measure) {
    double sum = 0;
    for (const Pixel& p : pixels) sum += measure(p);
    return pixels.empty() ? 0 : sum / static_cast<double>(pixels.size());
}

/// The value below which this share of the pixels lies.
template <class Measure>
double percentile(const Pixels& pixels, double share, Measure measure) {
    std::vector<double> values;
    for (const Pixel& p : pixels) values.push_back(measure(p));
    auto nth = values.begin() + static_cast<std::ptrdiff_t>(share * static_cast<double>(values.size() - 1));
    std::nth_element(values.begin(), nth, values.end());
    return *nth;
}

/// 0 below `low`, 1 above `high`, linear in between.
double ramp(double x, double low, double high) { return std::clamp((x - low) / (high - low), 0.0, 1.0); }

// --- faces ------------------------------------------------------------------------------------------------

/// The circle of a pupil that a flash has turned red: x, y and radius.
std::optional<std::array<double, 3>> redPupil(const Image& image, const Face& face, Point eye) {
    double reach = std::max(3.0, 0.12 * face.bounds.intersect(image->extent()).width());
    Pixels around = look(image, {eye.x - reach, eye.y - reach, eye.x + reach, eye.y + reach}, 64);
    // 1.7 times as much red in coded colour is over three times as much in linear light.
    auto isRed = [](const Pixel& p) { return p.r > 0.25 && p.r > 1.7 * std::max(p.g, p.b); };
    auto red = static_cast<double>(std::count_if(around.begin(), around.end(), isRed));
    double area = red / static_cast<double>(std::max<std::size_t>(around.size(), 1)) * 4 * reach * reach;
    if (red < 4 || area > 2 * reach * reach) return {};
    double x = 0, y = 0;
    for (const Pixel& p : around)
        if (isRed(p)) x += p.x / red, y += p.y / red;
    // A pupil is a disc: most of its red lies inside the circle of the same area. That of skin and lids does
    // not.
    double radius = std::sqrt(area / M_PI);
    auto inside = std::count_if(around.begin(), around.end(), [&](const Pixel& p) {
        return isRed(p) && std::hypot(p.x - x, p.y - y) <= radius + 0.5;
    });
    if (static_cast<double>(inside) < 0.6 * red) return {};
    return std::array{x, y, 1.2 * radius + 0.5};
}

std::optional<Adjustment> redEyeCorrection(const Image& image, const std::vector<Face>& faces) {
    engine::Numbers pupils;
    for (const Face& face : faces)
        for (Point eye : face.eyes)
            if (auto pupil = redPupil(image, face, eye))
                pupils.insert(pupils.end(), pupil->begin(), pupil->end());
    if (pupils.empty()) return {};
    return Adjustment{"CIRedEyeCorrections", {{"inputCorrectionInfo", std::move(pupils)}}};
}

/// Moves the skin in the middle of the faces towards the filter's own idea of skin.
std::optional<Adjustment> faceBalance(const Image& image, const std::vector<Face>& faces) {
    Pixels skin;
    for (const Face& face : faces) {
        const Rect& b = face.bounds;
        Pixels middle = look(image, b.grown(-0.25 * b.width(), -0.25 * b.height()), 48);
        std::copy_if(middle.begin(), middle.end(), std::back_inserter(skin),
                     [](const Pixel& p) { return p.luma() > 0.06 && p.low() < 0.95; });
    }
    if (skin.empty()) return {};
    double y = mean(skin, [](const Pixel& p) { return 0.299 * p.r + 0.587 * p.g + 0.114 * p.b; });
    double i = mean(skin, [](const Pixel& p) { return 0.595716 * p.r - 0.274453 * p.g - 0.321263 * p.b; });
    double q = mean(skin, [](const Pixel& p) { return 0.211456 * p.r - 0.522591 * p.g + 0.311135 * p.b; });

    const engine::FilterInfo& filter = *engine::findFilter("CIFaceBalance");
    auto standard = [&](const char* key) { return std::get<double>(*filter.findInput(key)->defaultValue); };
    // Chroma grows with luminance. The filter's skin has a luminance of 0.6, and its shift fades towards
    // black.
    constexpr double skinLuma = 0.6;
    double level = y / skinLuma, fading = 1 - (1 - y) * (1 - y);
    auto original = [&](double aim, double found) { return aim - (aim * level - found) / fading; };
    // People differ: only chroma beyond that of any skin in neutral light is a cast.
    auto beyond = [](double v, double low, double high) { return std::max({0.0, low - v, v - high}); };
    double cast = std::hypot(beyond(i / level, 0.05, 0.18), beyond(q / level, -0.02, 0.06));
    return Adjustment{filter.name,
                      {{"inputOrigI", original(standard("inputOrigI"), i)},
                       {"inputOrigQ", original(standard("inputOrigQ"), q)},
                       {"inputStrength", std::min(0.1 + 8 * cast, 0.8)}}};
}

// --- tones ------------------------------------------------------------------------------------------------

/// The curve from black to white in coded colour: linear between the two points, then a power.
struct Tones {
    double black = 0, white = 1, power = 1;

    double of(double x) const { return std::pow(ramp(x, black, white), power); }
};

/// Brightens a dark picture as a longer exposure would, as far as its whites allow, and leaves the rest to
/// the middle tones. A picture is too dark if it is dark on average or has no whites; one that is dark on
/// purpose stays mostly so.
Tones tonesFor(const Pixels& pixels) {
    auto luma = [](const Pixel& p) { return p.luma(); };
    double middle = mean(pixels, luma);
    double white = percentile(pixels, 0.995, [](const Pixel& p) { return p.high(); });
    double tooDark = std::max(ramp(0.4 - middle, 0, 0.16), ramp(0.8 - white, 0, 0.25));
    double wanted = middle + std::max(0.44 - middle, 0.0) * tooDark;
    double gain =
        std::clamp(std::min(0.98 / std::max(white, 0.01), wanted / std::max(middle, 0.01)), 1.0, 5.0);

    Tones tones;
    tones.white = 1 / gain;
    double exposed = mean(pixels, [&](const Pixel& p) { return tones.of(p.luma()); });
    double aim = exposed + 0.4 * std::max(0.34 - exposed, 0.0) - 0.5 * std::max(exposed - 0.6, 0.0);
    // Removes haze and scattered light. The middle tones make up for the darkening.
    tones.black = std::min(0.8 * std::max(percentile(pixels, 0.005, luma) - 0.01, 0.0), 0.12) / gain;
    double deepened = mean(pixels, [&](const Pixel& p) { return tones.of(p.luma()); });
    if (deepened > 0.005 && deepened < 0.995 && aim < 0.995)
        tones.power = std::clamp(std::log(aim) / std::log(deepened), 0.6, 1.8);
    return tones;
}

Adjustment toneCurve(const Tones& tones) {
    Adjustment curve{"CIToneCurve", {}};
    for (int i = 0; i <= 4; ++i) {
        double x = tones.black + (tones.white - tones.black) * i / 4;
        curve.values["inputPoint" + std::to_string(i)] = engine::Numbers{x, tones.of(x)};
    }
    return curve;
}

/// Dull colours get more saturation; gray pictures stay gray.
Adjustment vibrance(const Pixels& pixels) {
    double sum = 0, weight = 0;
    for (const Pixel& p : pixels) {
        if (p.high() <= 0) continue;
        sum += p.high() - p.low();
        weight += p.high();
    }
    double saturation = weight > 0 ? sum / weight : 0;
    double amount = std::clamp(0.8 * (0.35 - saturation), 0.0, 0.25) * ramp(saturation, 0.02, 0.08);
    return {"CIVibrance", {{"inputAmount", amount}}};
}

/// For pictures with an unusual share of nearly black or nearly white pixels after the curve.
Adjustment highlightsAndShadows(const Pixels& pixels, const Tones& tones, const Rect& extent) {
    double dark = mean(pixels, [&](const Pixel& p) { return tones.of(p.luma()) < 0.2; });
    double bright = mean(pixels, [&](const Pixel& p) { return tones.of(p.luma()) > 0.92; });
    return {"CIHighlightShadowAdjust",
            {{"inputShadowAmount", std::clamp(0.8 * (dark - 0.35), 0.0, 0.4)},
             {"inputHighlightAmount", 1 - std::clamp(0.8 * (bright - 0.12), 0.0, 0.3)},
             {"inputRadius", 0.01 * std::hypot(extent.width(), extent.height())}}};
}

std::vector<Adjustment> analyse(const Image& image, const std::vector<Face>& faces,
                                const AdjustOptions& options) {
    std::vector<Adjustment> found;
    if (!image || image->extent().isEmpty() || image->extent().isInfinite()) return found;
    if (options.redEye)
        if (auto correction = redEyeCorrection(image, faces)) found.push_back(std::move(*correction));
    if (!options.enhance) return found;
    Pixels pixels = look(image, image->extent(), 256);
    if (pixels.empty()) return found;
    if (auto balance = faceBalance(image, faces)) found.push_back(std::move(*balance));
    Tones tones = tonesFor(pixels);
    found.push_back(vibrance(pixels));
    found.push_back(toneCurve(tones));
    found.push_back(highlightsAndShadows(pixels, tones, image->extent()));
    return found;
}

} // namespace

std::vector<Adjustment> adjustments(const Image& image, const std::vector<Face>& faces,
                                    const AdjustOptions& options, Failure& failure) {
    return attempt(failure, [&] { return analyse(image, faces, options); });
}

} // namespace ci
