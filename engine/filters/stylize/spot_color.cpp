#include "registry.h"

#include <color/vecmath.h>

namespace engine {

namespace {

namespace simd = color::simd;

struct Spot {
    Color centre, replacement;
    double closeness, contrast;
};

/// A colour whose distance to a centre, in coded components, is less than the closeness becomes the
/// replacement: wholly within the contrast's share of the closeness, beyond that as much as is left of the
/// way. The spots are taken one after the other; other colours stay. (The inputs are Core Image's; the
/// formula is ours.)
Image build(const Inputs& in) {
    std::array<Spot, 3> spots;
    for (int i = 0; i < 3; ++i) {
        std::string n = std::to_string(i + 1);
        spots[i] = {in.color("inputCenterColor" + n), in.color("inputReplacementColor" + n),
                    in.number("inputCloseness" + n, 0, 10), in.number("inputContrast" + n, 0, 1)};
        spots[i].replacement.a = 1;
    }
    return pointStep(in.image("inputImage"), "spot color", [=](const RenderContext& context) -> SpanFunction {
        std::array<Rgba, 3> replacements;
        for (int i = 0; i < 3; ++i) replacements[i] = context.color(spots[i].replacement);
        return [=](const Span& s, int, int, int n) {
            alignas(32) float red[maxSpan], green[maxSpan], blue[maxSpan];
            simd::run([=, r = s.plane[0], g = s.plane[1], b = s.plane[2], a = s.plane[3], red = red,
                       green = green, blue = blue]() SIMD_INLINE {
                SIMD_LOOP
                for (int i = 0; i < n; ++i) {
                    float scale = 1 / simd::max(a[i], 1e-6f);
                    red[i] = simd::linearToSrgbUnit(r[i] * scale);
                    green[i] = simd::linearToSrgbUnit(g[i] * scale);
                    blue[i] = simd::linearToSrgbUnit(b[i] * scale);
                }
            });
            for (int k = 0; k < 3; ++k) {
                const Spot& spot = spots[k];
                auto inner = spot.closeness * spot.contrast;
                simd::run(
                    [=, r = s.plane[0], g = s.plane[1], b = s.plane[2], a = s.plane[3],
                     centreR = static_cast<float>(spot.centre.r), centreG = static_cast<float>(spot.centre.g),
                     centreB = static_cast<float>(spot.centre.b), most = static_cast<float>(spot.closeness),
                     slope = static_cast<float>(1 / std::max(spot.closeness - inner, 1e-6)),
                     to = replacements[k], red = red, green = green, blue = blue]() SIMD_INLINE {
                        SIMD_LOOP
                        for (int i = 0; i < n; ++i) {
                            float dr = red[i] - centreR, dg = green[i] - centreG, db = blue[i] - centreB;
                            float t = simd::unit((most - simd::sqrt(dr * dr + dg * dg + db * db)) * slope);
                            r[i] = simd::mix(r[i], to[0] * a[i], t);
                            g[i] = simd::mix(g[i], to[1] * a[i], t);
                            b[i] = simd::mix(b[i], to[2] * a[i], t);
                        }
                    });
            }
        };
    });
}

InputInfo closeness(const char* number, double value) {
    return numberInput(std::string("inputCloseness") + number, std::string("Closeness ") + number, "Scalar",
                       {.value = value, .min = 0, .sliderMin = 0, .sliderMax = 0.5});
}
InputInfo contrast(const char* number, double value) {
    return numberInput(std::string("inputContrast") + number, std::string("Contrast ") + number, "Scalar",
                       {.value = value, .min = 0, .sliderMin = 0, .sliderMax = 1});
}

const Registrar filter{
    {"CISpotColor",
     "Spot Color",
     "Puts three colours in place of those near three others.",
     "10.5",
     categories("Stylize Video StillImage BuiltIn"),
     {imageInput(), colorInput("inputCenterColor1", "Center Color 1", "", {0.0784, 0.0627, 0.0706, 1}),
      colorInput("inputReplacementColor1", "Replacement Color 1", "", {0.4392, 0.1922, 0.1961, 1}),
      closeness("1", 0.22), contrast("1", 0.98),
      colorInput("inputCenterColor2", "Center Color 2", "", {0.5255, 0.3059, 0.3451, 1}),
      colorInput("inputReplacementColor2", "Replacement Color 2", "", {0.9137, 0.5608, 0.5059, 1}),
      closeness("2", 0.15), contrast("2", 0.98),
      colorInput("inputCenterColor3", "Center Color 3", "", {0.9216, 0.4549, 0.3333, 1}),
      colorInput("inputReplacementColor3", "Replacement Color 3", "", {0.9098, 0.7529, 0.6078, 1}),
      closeness("3", 0.5), contrast("3", 0.99)},
     build}};

} // namespace

} // namespace engine
