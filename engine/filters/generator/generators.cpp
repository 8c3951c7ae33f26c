#include "registry.h"

#include <color/vecmath.h>

#include <cmath>

namespace engine {

namespace {

namespace simd = color::simd;

/// Mixes two colours by what `amount(i)` gives for each pixel: 0 for the first.
template <class F>
void mixColors(const Rgba& first, const Rgba& second, const Span& out, int n, F amount) {
    simd::run([=, r = out.plane[0], g = out.plane[1], b = out.plane[2], a = out.plane[3]]() SIMD_INLINE {
        SIMD_LOOP
        for (int i = 0; i < n; ++i) {
            float t = amount(i);
            r[i] = simd::mix(first[0], second[0], t);
            g[i] = simd::mix(first[1], second[1], t);
            b[i] = simd::mix(first[2], second[2], t);
            a[i] = simd::mix(first[3], second[3], t);
        }
    });
}

/// A wave of two colours, each as wide as the other. Its edges lie at 0.5 and 1.5 of a place that goes from 0
/// to 2: -1 in the middle, 1 at both ends. With less sharpness the edges become ramps, at none as wide as a
/// colour.
struct SquareWave {
    double centre, width;
    float sharpen, step;

    /// The second colour begins at `centre`.
    SquareWave(const Inputs& in, double centre)
        : centre(centre), width(std::clamp(std::abs(in.number("inputWidth")), 1e-3, 1e9)),
          // An edge is at least a pixel wide, which keeps it smooth.
          sharpen(static_cast<float>(
              2 / std::max(1 - in.number("inputSharpness", 0, 1), std::min(1.0, 1 / width)))),
          step(static_cast<float>(1 / width)) {}

    float place(int pixel) const {
        double v = (pixel + 0.5 - centre) / width + 0.5;
        return static_cast<float>(v - 2 * std::floor(v / 2));
    }
    SIMD_INLINE float at(float place) const {
        float wrapped = place - 2 * simd::floor(place * 0.5f);
        return simd::clamp((simd::abs(wrapped - 1) - 0.5f) * sharpen, -1, 1);
    }
};

/// The product of two square waves.
Image checkerboard(const Inputs& in) {
    SquareWave across(in, in.point("inputCenter").x), up(in, in.point("inputCenter").y);
    Color color0 = in.color("inputColor0"), color1 = in.color("inputColor1");
    return generator("checkerboard", Rect::infinite(), [=](const RenderContext& context) -> SpanFunction {
        return [=, first = context.color(color0), second = context.color(color1)](const Span& out, int x,
                                                                                  int y, int n) {
            float px = across.place(x), row = up.at(up.place(y));
            mixColors(first, second, out, n, [=](int i) SIMD_INLINE {
                return 0.5f - 0.5f * row * across.at(px + static_cast<float>(i) * across.step);
            });
        };
    });
}

/// One square wave: the second colour to the right of the centre, as in pictures of Core Image.
Image stripes(const Inputs& in) {
    SquareWave across(in, in.point("inputCenter").x);
    Color color0 = in.color("inputColor0"), color1 = in.color("inputColor1");
    return generator("stripes", Rect::infinite(), [=](const RenderContext& context) -> SpanFunction {
        return [=, first = context.color(color0), second = context.color(color1)](const Span& out, int x, int,
                                                                                  int n) {
            float px = across.place(x);
            mixColors(first, second, out, n, [=](int i) SIMD_INLINE {
                return 0.5f - 0.5f * across.at(px + static_cast<float>(i) * across.step);
            });
        };
    });
}

/// The colour changes evenly along the line between the points and stays the same beyond them.
Image linearGradient(const Inputs& in) {
    Point p0 = in.point("inputPoint0"), p1 = in.point("inputPoint1");
    Color color0 = in.color("inputColor0"), color1 = in.color("inputColor1");
    double dx = p1.x - p0.x, dy = p1.y - p0.y, length = dx * dx + dy * dy;
    if (!(length > 1e-12) || !std::isfinite(length)) return constant(color0);
    return generator("linear gradient", Rect::infinite(), [=](const RenderContext& context) -> SpanFunction {
        return [=, first = context.color(color0), second = context.color(color1)](const Span& out, int x,
                                                                                  int y, int n) {
            float t0 = static_cast<float>(((x + 0.5 - p0.x) * dx + (y + 0.5 - p0.y) * dy) / length);
            float step = static_cast<float>(dx / length);
            mixColors(first, second, out, n,
                      [=](int i) SIMD_INLINE { return simd::unit(t0 + static_cast<float>(i) * step); });
        };
    });
}

/// The colour changes evenly with the distance from the centre, between the two radii.
Image radialGradient(const Inputs& in) {
    Point c = in.point("inputCenter");
    double r0 = in.number("inputRadius0", 0, 1e9), r1 = in.number("inputRadius1", 0, 1e9);
    Color color0 = in.color("inputColor0"), color1 = in.color("inputColor1");
    // With equal radii the change is a step, softened over a pixel.
    double span = std::abs(r1 - r0) < 1 ? (r1 < r0 ? -1 : 1) : r1 - r0;
    float scale = static_cast<float>(1 / span), begin = static_cast<float>(-r0 / span);
    return generator("radial gradient", Rect::infinite(), [=](const RenderContext& context) -> SpanFunction {
        return [=, first = context.color(color0), second = context.color(color1)](const Span& out, int x,
                                                                                  int y, int n) {
            float dx = static_cast<float>(x + 0.5 - c.x), dy = static_cast<float>(y + 0.5 - c.y);
            mixColors(first, second, out, n, [=](int i) SIMD_INLINE {
                float d = dx + static_cast<float>(i);
                return simd::unit(begin + scale * simd::sqrt(d * d + dy * dy));
            });
        };
    });
}

/// As a Gaussian whose standard deviation is a third of the radius, stretched so that the second colour is
/// reached there. (Core Image does not tell its own formula.)
Image gaussianGradient(const Inputs& in) {
    Point c = in.point("inputCenter");
    Color color0 = in.color("inputColor0"), color1 = in.color("inputColor1");
    double radius = std::max(in.number("inputRadius", 0, 1e9), 1e-3), end = std::exp(-4.5);
    float square = static_cast<float>(-4.5 / (radius * radius)), stretch = static_cast<float>(1 / (1 - end));
    return generator(
        "gaussian gradient", Rect::infinite(), [=](const RenderContext& context) -> SpanFunction {
            return [=, first = context.color(color0), second = context.color(color1)](const Span& out, int x,
                                                                                      int y, int n) {
                float dx = static_cast<float>(x + 0.5 - c.x), dy = static_cast<float>(y + 0.5 - c.y);
                mixColors(first, second, out, n, [=](int i) SIMD_INLINE {
                    float d = dx + static_cast<float>(i);
                    return simd::unit((1 - simd::exp(square * (d * d + dy * dy))) * stretch);
                });
            };
        });
}

constexpr Color white{1, 1, 1, 1}, black{0, 0, 0, 1};

const Registrar constantColor{{"CIConstantColorGenerator",
                               "Constant Color",
                               "Fills everything with one colour.",
                               "10.4",
                               categories("Generator Video StillImage BuiltIn"),
                               {colorInput("inputColor", "Color", "Color", {1, 0, 0, 1})},
                               [](const Inputs& in) { return constant(in.color("inputColor")); }}};

/// What the patterns of two colours have in common.
std::vector<InputInfo> patternInputs() {
    return {vectorInput("inputCenter", "Center", "Position", {150, 150}),
            colorInput("inputColor0", "Color 1", "", white), colorInput("inputColor1", "Color 2", "", black),
            numberInput("inputWidth", "Width", "Distance", {.value = 80, .sliderMin = 0, .sliderMax = 800}),
            numberInput("inputSharpness", "Sharpness", "Scalar",
                        {.value = 1, .min = 0, .max = 1, .sliderMin = 0, .sliderMax = 1})};
}

const Registrar checkerboards{
    {"CICheckerboardGenerator", "Checkerboard", "Makes a pattern of squares in two colours.", "10.4",
     categories("Generator Video StillImage BuiltIn"), patternInputs(), checkerboard}};

const Registrar stripePatterns{{"CIStripesGenerator", "Stripes",
                                "Makes a pattern of upright stripes in two colours.", "10.4",
                                categories("Generator Video StillImage BuiltIn"), patternInputs(), stripes}};

const Registrar linear{{"CILinearGradient",
                        "Linear Gradient",
                        "Makes a transition between two colours along a line.",
                        "10.4",
                        categories("Gradient Video StillImage BuiltIn"),
                        {vectorInput("inputPoint0", "Point 0", "Position", {0, 0}),
                         vectorInput("inputPoint1", "Point 1", "Position", {200, 200}),
                         colorInput("inputColor0", "Color 1", "Color", white),
                         colorInput("inputColor1", "Color 2", "Color", black)},
                        linearGradient}};

const Registrar radial{{"CIRadialGradient",
                        "Radial Gradient",
                        "Makes a transition between two colours from a centre outwards.",
                        "10.4",
                        categories("Gradient Video StillImage BuiltIn"),
                        {vectorInput("inputCenter", "Center", "Position", {150, 150}),
                         numberInput("inputRadius0", "Radius 1", "Distance",
                                     {.value = 5, .min = 0, .sliderMin = 0, .sliderMax = 800}),
                         numberInput("inputRadius1", "Radius 2", "Distance",
                                     {.value = 100, .min = 0, .sliderMin = 0, .sliderMax = 800}),
                         colorInput("inputColor0", "Color 1", "Color", white),
                         colorInput("inputColor1", "Color 2", "Color", black)},
                        radialGradient}};

const Registrar gaussians{{"CIGaussianGradient",
                           "Gaussian Gradient",
                           "Makes a soft spot of one colour in another.",
                           "10.4",
                           categories("Gradient Video StillImage BuiltIn"),
                           {vectorInput("inputCenter", "Center", "Position", {150, 150}),
                            colorInput("inputColor0", "Color 1", "Color", white),
                            colorInput("inputColor1", "Color 2", "Color", {0, 0, 0, 0}),
                            numberInput("inputRadius", "Radius", "Distance",
                                        {.value = 300, .min = 0, .sliderMin = 0, .sliderMax = 800})},
                           gaussianGradient}};

} // namespace

} // namespace engine
