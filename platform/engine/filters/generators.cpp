#include "../src/registry.h"

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

/// How far into the second square, 0..1, from the place within a pair of squares (0..2). `blur` is the share
/// of a square over which the edge is spread.
SIMD_INLINE inline float checker(float place, float sharpen) {
    float toEdge = simd::abs(place - 1) - 0.5f; // below 0 in the second half
    return simd::clamp(toEdge * sharpen, -1, 1);
}

/// The product of two square waves. With less sharpness the edges become ramps, at none as wide as a square.
Image checkerboard(const Inputs& in) {
    Point c = in.point("inputCenter");
    Color color0 = in.color("inputColor0"), color1 = in.color("inputColor1");
    double width = std::clamp(std::abs(in.number("inputWidth")), 1e-3, 1e9);
    // An edge is at least a pixel wide, which keeps it smooth.
    double edge = std::max(1 - in.number("inputSharpness", 0, 1), std::min(1.0, 1 / width));
    float sharpen = static_cast<float>(2 / edge), step = static_cast<float>(1 / width);
    return generator("checkerboard", Rect::infinite(), [=](const RenderContext& context) -> SpanFunction {
        return [=, first = context.color(color0), second = context.color(color1)](const Span& out, int x,
                                                                                  int y, int n) {
            // The place within two squares, half a square further, so that edges lie at 0.5 and 1.5.
            auto place = [&](double v) { return static_cast<float>(v - 2 * std::floor(v / 2)); };
            float px = place((x + 0.5 - c.x) / width + 0.5), py = place((y + 0.5 - c.y) / width + 0.5);
            float wave = checker(py, sharpen);
            mixColors(first, second, out, n, [=](int i) SIMD_INLINE {
                float p = px + static_cast<float>(i) * step;
                return 0.5f - 0.5f * wave * checker(p - 2 * simd::floor(p * 0.5f), sharpen);
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

constexpr Color white{1, 1, 1, 1}, black{0, 0, 0, 1};

const Registrar constantColor{{"CIConstantColorGenerator",
                               "Constant Color",
                               "Fills everything with one colour.",
                               "10.4",
                               categories("Generator Video StillImage BuiltIn"),
                               {colorInput("inputColor", "Color", "Color", {1, 0, 0, 1})},
                               [](const Inputs& in) { return constant(in.color("inputColor")); }}};

const Registrar checkerboards{
    {"CICheckerboardGenerator",
     "Checkerboard",
     "Makes a pattern of squares in two colours.",
     "10.4",
     categories("Generator Video StillImage BuiltIn"),
     {vectorInput("inputCenter", "Center", "Position", {150, 150}),
      colorInput("inputColor0", "Color 1", "", white), colorInput("inputColor1", "Color 2", "", black),
      numberInput("inputWidth", "Width", "Distance", {.value = 80, .sliderMin = 0, .sliderMax = 800}),
      numberInput("inputSharpness", "Sharpness", "Scalar",
                  {.value = 1, .min = 0, .max = 1, .sliderMin = 0, .sliderMax = 1})},
     checkerboard}};

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

} // namespace

} // namespace engine
