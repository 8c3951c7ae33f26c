// Pictures made of ink: black and white only, as printing has it, with gray as more or less of the area. The
// screens compare the light of a picture with a pattern whose values are spread evenly over 0..1, so that as
// much of a screen is white as there is light. (Core Image does not tell its own patterns.)
#include "registry.h"

#include <color/vecmath.h>

#include <cmath>

namespace engine {

namespace {

constexpr double pi = 3.141592653589793;
namespace simd = color::simd;

/// 0 at even and 1 at odd numbers.
SIMD_INLINE inline float wave(float x) { return simd::abs(x - 2 * simd::floor(x * 0.5f + 0.5f)); }

// Patterns of a place in units of half the width. What is computed of two waves is made even again by its own
// distribution.

struct Lines {
    SIMD_INLINE static float at(float, float v) { return wave(v); }
};

/// White grows as dots, and black is left as dots where it has grown together.
struct Dots {
    SIMD_INLINE static float at(float u, float v) {
        float s = 0.5f * (wave(u) + wave(v)), t = 1 - s;
        return s < 0.5f ? 2 * s * s : 1 - 2 * t * t;
    }
};

/// White grows as squares between lines that cross.
struct Hatches {
    SIMD_INLINE static float at(float u, float v) {
        float s = simd::max(wave(u), wave(v));
        return s * s;
    }
};

struct Circles {
    SIMD_INLINE static float at(float u, float v) { return wave(simd::sqrt(u * u + v * v)); }
};

/// Where a pattern lies, and how soft its edges are.
struct Screen {
    double width, u0, v0, cosine, sine;
    float soft;

    Screen(const Inputs& in, double turn = 0)
        : width(in.number("inputWidth", 1, 1e6)), u0(in.point("inputCenter").x),
          v0(in.point("inputCenter").y) {
        double angle = in.number("inputAngle", -1e6, 1e6) + turn;
        cosine = std::cos(angle) * 2 / width, sine = std::sin(angle) * 2 / width;
        // An edge is about a pixel wide at least, which keeps it smooth.
        soft = static_cast<float>(std::max(1 - in.number("inputSharpness", 0, 1), std::min(1.0, 2 / width)));
    }

    /// The place of a row's first pixel, near the origin of a pattern that repeats after 2 in each direction.
    Point first(int x, int y) const {
        double px = x + 0.5 - u0, py = y + 0.5 - v0;
        return {px * cosine + py * sine, py * cosine - px * sine};
    }
    static float near(double v) { return static_cast<float>(v - 2 * std::floor(v / 2)); }

    /// 1 where there is more light than the pattern asks for, with a ramp between. Where the ramp would reach
    /// beyond the pattern's values it is moved so that its mean stays the light; black and white stay free of
    /// the pattern.
    SIMD_INLINE static float inkless(float light, float pattern, float soft) {
        float half = 0.5f * soft, dark = simd::sqrt(2 * soft * light);
        float bright = 1 + soft - simd::sqrt(2 * soft * (1 - light));
        float middle = light < half ? dark : light > 1 - half ? bright : light + half;
        return simd::unit((middle - pattern) / soft);
    }
};

/// In gray, by the light of the straight colour.
template <class Pattern>
Image screened(const Inputs& in) {
    constexpr bool repeats = !std::is_same_v<Pattern, Circles>;
    return pointStep(in.image("inputImage"), "screen", [screen = Screen(in)](const RenderContext&) {
        return [screen](const Span& s, int x, int y, int n) {
            Point first = screen.first(x, y);
            float u0 = repeats ? Screen::near(first.x) : static_cast<float>(first.x);
            float v0 = repeats ? Screen::near(first.y) : static_cast<float>(first.y);
            float du = static_cast<float>(screen.cosine), dv = static_cast<float>(-screen.sine);
            simd::run([=, soft = screen.soft, r = s.plane[0], g = s.plane[1], b = s.plane[2],
                       a = s.plane[3]]() SIMD_INLINE {
                SIMD_LOOP
                for (int i = 0; i < n; ++i) {
                    float alpha = a[i], inverse = alpha > 0 ? 1 / alpha : 0, k = static_cast<float>(i);
                    float light = simd::unit((0.2126f * r[i] + 0.7152f * g[i] + 0.0722f * b[i]) * inverse);
                    float gray = alpha * Screen::inkless(light, Pattern::at(u0 + k * du, v0 + k * dv), soft);
                    r[i] = gray;
                    g[i] = gray;
                    b[i] = gray;
                }
            });
        };
    });
}

/// Four screens of dots, turned against each other as printers do. The part of a colour that is gray and
/// darker than 1 - UCR goes to black, as far as GCR says; the other inks give what black leaves, so that the
/// light stays right.
Image printed(const Inputs& in) {
    std::array<Screen, 4> screens{Screen(in, pi / 12), Screen(in, 5 * pi / 12), Screen(in, 0),
                                  Screen(in, pi / 4)};
    float replaced = static_cast<float>(in.number("inputGCR", 0, 1)),
          under = static_cast<float>(in.number("inputUCR", 0, 1));
    return pointStep(in.image("inputImage"), "cmyk halftone", [=](const RenderContext&) {
        return [=](const Span& s, int x, int y, int n) {
            alignas(32) float black[maxSpan];
            auto start = [&](int ink) {
                Point first = screens[ink].first(x, y);
                return std::array{Screen::near(first.x), Screen::near(first.y),
                                  static_cast<float>(screens[ink].cosine),
                                  static_cast<float>(-screens[ink].sine)};
            };
            simd::run([=, black = black, r = s.plane[0], g = s.plane[1], b = s.plane[2],
                       a = s.plane[3]]() SIMD_INLINE {
                SIMD_LOOP
                for (int i = 0; i < n; ++i) {
                    float inverse = a[i] > 0 ? 1 / a[i] : 0;
                    float gray = 1 - simd::unit(simd::max(simd::max(r[i], g[i]), b[i]) * inverse);
                    black[i] = replaced * simd::max(gray - 1 + under, 0) / simd::max(under, 1e-6f);
                }
            });
            auto dots = start(3);
            for (int c = 0; c < 3; ++c)
                simd::run([=, black = black, v = s.plane[c], a = s.plane[3], ink = start(c),
                           soft = screens[c].soft]() SIMD_INLINE {
                    SIMD_LOOP
                    for (int i = 0; i < n; ++i) {
                        float k = static_cast<float>(i), left = 1 - black[i];
                        float light = simd::unit(v[i] / simd::max(a[i] * left, 1e-6f));
                        float white =
                            Screen::inkless(light, Dots::at(ink[0] + k * ink[2], ink[1] + k * ink[3]), soft);
                        white *= Screen::inkless(left, Dots::at(dots[0] + k * dots[2], dots[1] + k * dots[3]),
                                                 soft);
                        v[i] = a[i] * white;
                    }
                });
        };
    });
}

InputInfo angleInput() {
    return numberInput("inputAngle", "Angle", "Angle",
                       {.value = 0, .identity = 0, .sliderMin = -pi, .sliderMax = pi});
}

std::vector<InputInfo> screenInputs(bool turns) {
    std::vector<InputInfo> inputs{
        imageInput(), vectorInput("inputCenter", "Center", "Position", {150, 150}),
        numberInput("inputWidth", "Width", "Distance",
                    {.value = 6, .min = 1, .sliderMin = 2, .sliderMax = 50}),
        numberInput("inputSharpness", "Sharpness", "Scalar",
                    {.value = 0.7, .min = 0, .max = 1, .sliderMin = 0, .sliderMax = 1})};
    if (turns) inputs.push_back(angleInput());
    return inputs;
}

Registrar screen(std::string name, std::string displayName, std::string description,
                 std::vector<InputInfo> inputs, Image (*build)(const Inputs&)) {
    return Registrar({std::move(name), std::move(displayName), std::move(description), "10.4",
                      categories("HalftoneEffect Video StillImage BuiltIn"), std::move(inputs), build});
}

const Registrar filters[] = {
    screen("CICircularScreen", "Circular Screen", "Prints a picture in black with circles around a centre.",
           screenInputs(false), screened<Circles>),
    screen("CIDotScreen", "Dot Screen", "Prints a picture in black with dots.", screenInputs(true),
           screened<Dots>),
    screen("CIHatchedScreen", "Hatched Screen", "Prints a picture in black with lines that cross.",
           screenInputs(true), screened<Hatches>),
    screen("CILineScreen", "Line Screen", "Prints a picture in black with parallel lines.",
           screenInputs(true), screened<Lines>),
    screen("CICMYKHalftone", "CMYK Halftone",
           "Prints a picture with dots in cyan, magenta, yellow and black.",
           {imageInput(), vectorInput("inputCenter", "Center", "Position", {150, 150}),
            numberInput("inputWidth", "Width", "Distance",
                        {.value = 6, .identity = 6, .min = -2, .sliderMin = 2, .sliderMax = 100}),
            angleInput(),
            numberInput("inputSharpness", "Sharpness", "Distance",
                        {.value = 0.7, .min = 0, .sliderMin = 0, .sliderMax = 1}),
            numberInput("inputGCR", "Gray Component Replacement", "Scalar",
                        {.value = 1, .identity = 1, .min = 0, .sliderMin = 0, .sliderMax = 1}),
            numberInput("inputUCR", "Under Color Removal", "Scalar",
                        {.value = 0.5, .identity = 0.5, .min = 0, .sliderMin = 0, .sliderMax = 1})},
           printed),
};

} // namespace

} // namespace engine
