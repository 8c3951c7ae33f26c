// CISpotColor: three colours in place of those near three others.
#include "filter.h"
#include "kernel.h"

namespace engine {

namespace {

struct Spot {
    /// Coded.
    Pixel centre;
    float closeness, slope;
    Pixel replacement;
};

/// `coded` is the pixel as it was before any replacement.
SIMD_INLINE inline Pixel replaced(Pixel p, Pixel coded, const Spot& spot) {
    float dr = coded.r - spot.centre.r, dg = coded.g - spot.centre.g, db = coded.b - spot.centre.b;
    float t = simd::unit((spot.closeness - simd::sqrt(dr * dr + dg * dg + db * db)) * spot.slope);
    return eachColor(p, spot.replacement,
                     [=](float v, float to) SIMD_INLINE { return simd::mix(v, to * p.a, t); });
}

/// A colour whose distance to a centre, in coded components, is less than the closeness becomes the
/// replacement: wholly within the contrast's share of the closeness, beyond that as much as is left of the
/// way. The spots are taken one after the other; other colours stay. (The inputs are Core Image's; the
/// formula is ours.)
Image build(const Inputs& in) {
    std::array<Spot, 3> spots;
    std::array<Color, 3> replacements;
    for (int i = 0; i < 3; ++i) {
        std::string n = std::to_string(i + 1);
        Color centre = in.color("inputCenterColor" + n);
        double closeness = in.number("inputCloseness" + n, 0, 10);
        double outer = closeness - closeness * in.number("inputContrast" + n, 0, 1);
        spots[i].centre = {static_cast<float>(centre.r), static_cast<float>(centre.g),
                           static_cast<float>(centre.b), 1};
        spots[i].closeness = static_cast<float>(closeness);
        spots[i].slope = static_cast<float>(1 / std::max(outer, 1e-6));
        replacements[i] = in.color("inputReplacementColor" + n);
        replacements[i].a = 1;
    }
    return pointStep(in.image("inputImage"), "spot color", [=](const RenderContext& context) -> SpanFunction {
        auto own = spots;
        for (int i = 0; i < 3; ++i) own[i].replacement = pixel(context.color(replacements[i]));
        // One spot after the other: all three have more numbers than the processor has registers.
        return [own](const Span& s, int, int, int n) {
            SpanBuffer buffer;
            eachIndex(n, [=, coded = buffer.span()](int i) SIMD_INLINE {
                store(coded, i, eachColor(straight(load(s, i)), [](float v) SIMD_INLINE {
                          return simd::linearToSrgbUnit(v);
                      }));
            });
            for (const Spot& spot : own)
                eachPixel(
                    n, [spot](Pixel p, Pixel coded) SIMD_INLINE { return replaced(p, coded, spot); }, s,
                    buffer.span());
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
     ourOwn("distances in coded components, cut off by closeness and contrast"),
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
