// CIComicEffect: a picture as a page of comics.
#include "filter.h"
#include "kernel.h"

#include <cmath>

namespace engine {

namespace {

Image made(const char* filter, const Values& values) { return apply(*findFilter(filter), values); }

/// Distance of the dots of the colours, in pixels.
constexpr double dotWidth = 6;
/// Steps of each coded component.
constexpr float steps = 4;

/// A pattern of dots turned by that angle, from 0 in the middle of a dot to 1 between them.
struct Dots {
    double u, v;

    explicit Dots(double angle)
        : u(2 * pi / dotWidth * std::cos(angle)), v(2 * pi / dotWidth * std::sin(angle)) {}
    Through place() const { return {{u, -v, v, u, 0, 0}}; }
    SIMD_INLINE static float at(Position p) { return 0.5f - 0.25f * (simd::cos(p.x) + simd::cos(p.y)); }
};

/// Few steps of each component; which of two a place takes, its dot decides.
SIMD_INLINE inline float printed(float coded, float dots) {
    float level = simd::unit(coded) * steps, low = simd::floor(level);
    // Softened over a quarter of the pattern to each side; 0 and 1 are free of it.
    float part = 1.5f * (level - low) - 0.25f;
    return (low + simd::unit(2 * (part - dots) + 0.5f)) / steps;
}

/// The picture is smoothed, so that areas become even, and printed with dots of three colours in few steps;
/// black lines are drawn along its edges. (Core Image documents that edges are outlined and that there is a
/// colour halftone; the formula is our own: no picture is known.)
Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    if (!image || image->extent().isEmpty()) return image;
    Image smooth = crop(gaussian(clampToEdge(image), 1.2), image->extent());
    smooth = eachPixel("same alpha", image->extent(), {smooth, image}, [](Pixel p, Pixel q) SIMD_INLINE {
        float scale = q.a * unpremultiply(p.a);
        return Pixel{p.r * scale, p.g * scale, p.b * scale, q.a};
    });
    Image colors = smooth;
    // The angles of printing, cyan, magenta and yellow, which darken red, green and blue.
    const double angles[] = {pi / 12, 5 * pi / 12, 0};
    for (int c = 0; c < 3; ++c)
        colors = pointStep(colors, "comic dots", [place = Dots(angles[c]).place(), c](const RenderContext&) {
            return [=](const Span& s, int x, int y, int n) {
                eachIndex(n, [=, v = s.plane[c], a = s.plane[3], row = place.row(x, y)](int i) SIMD_INLINE {
                    float straight = simd::linearToSrgb(v[i] * unpremultiply(a[i]));
                    v[i] = a[i] * simd::srgbToLinear(printed(straight, Dots::at(row.at(i))));
                });
            };
        });
    Image lines = made("CILineOverlay", {{"inputImage", image}});
    return crop(composite(lines, colors), image->extent());
}

const Registrar filter{{"CIComicEffect",
                        "Comic Effect",
                        "Makes a picture look like a page of comics, with outlines and dots of colour.",
                        ourOwn("Core Image documents outlines and a colour halftone; the formula is our own"),
                        "10.5",
                        categories("Stylize Video StillImage BuiltIn"),
                        {imageInput()},
                        build}};

} // namespace

} // namespace engine
