// CIDepthOfField: a picture that looks like one of a miniature, sharp along a line only.
#include "filter.h"
#include "kernel.h"

#include <cmath>

namespace engine {

namespace {

Image made(const char* filter, const Values& values) { return apply(*findFilter(filter), values); }

/// How far a place is from the line from the one point to the other, or from the point when they are one.
struct Line {
    Point middle;
    double alongX = 0, alongY = 0, length;

    Line(Point a, Point b)
        : middle{(a.x + b.x) / 2, (a.y + b.y) / 2}, length(std::hypot(b.x - a.x, b.y - a.y)) {
        if (length > 0 && std::isfinite(length)) alongX = (b.x - a.x) / length, alongY = (b.y - a.y) / length;
    }
};

/// More colourful everywhere, sharpened with an unsharp mask near the line through the points and blurred far
/// from it. The blur sets in at the line and is whole at half the points' distance. (Core Image documents
/// these steps; how far the focus reaches is our own: no picture is known.)
Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    if (!image || image->extent().isEmpty()) return image;
    Rect extent = image->extent();
    Line line(in.point("inputPoint0"), in.point("inputPoint1"));
    image = made("CIColorControls",
                 {{"inputImage", image}, {"inputSaturation", in.number("inputSaturation", 0, 100)}});
    Image sharp = made("CIUnsharpMask", {{"inputImage", image},
                                         {"inputRadius", in.number("inputUnsharpMaskRadius", 0, 1e3)},
                                         {"inputIntensity", in.number("inputUnsharpMaskIntensity", 0, 1e3)}});
    Image soft = gaussian(clampToEdge(image), in.number("inputRadius", 0, 1e3));
    double reach = std::clamp(line.length / 2, 1.0, 1e9);
    Image amount = eachPlace(
        "focus", extent, ScaledFrom{line.middle, 1 / reach},
        [x = static_cast<float>(line.alongX), y = static_cast<float>(line.alongY)](Position p) SIMD_INLINE {
            float along = p.x * x + p.y * y;
            float far = p.x * p.x + p.y * p.y - along * along;
            return gray(0, smoothstep(simd::sqrt(far)));
        });
    return eachPixel("depth of field", extent, {sharp, soft, amount},
                     [](Pixel p, Pixel q, Pixel t) SIMD_INLINE { return mix(p, q, t.a); });
}

const Registrar filter{{"CIDepthOfField",
                        "Depth of Field",
                        "Makes a picture look like one of a miniature, sharp along a line only.",
                        ourOwn("Core Image documents the steps; how far the focus reaches is our own"),
                        "10.6",
                        categories("Stylize Video StillImage BuiltIn"),
                        {imageInput(), vectorInput("inputPoint0", "Point 0", "Position", {0, 300}),
                         vectorInput("inputPoint1", "Point 1", "Position", {300, 300}),
                         numberInput("inputSaturation", "Saturation", "Scalar",
                                     {.value = 1.5, .min = 0, .sliderMin = 0, .sliderMax = 10}),
                         numberInput("inputUnsharpMaskRadius", "Unsharp Mask Radius", "Scalar",
                                     {.value = 2.5, .min = 0, .sliderMin = 0, .sliderMax = 10}),
                         numberInput("inputUnsharpMaskIntensity", "Unsharp Mask Intensity", "Scalar",
                                     {.value = 0.5, .min = 0, .sliderMin = 0, .sliderMax = 10}),
                         numberInput("inputRadius", "Radius", "Scalar",
                                     {.value = 6, .min = 0, .sliderMin = 0, .sliderMax = 30})},
                        build}};

} // namespace

} // namespace engine
