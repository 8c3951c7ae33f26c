#include "registry.h"

#include <color/vecmath.h>

#include <cmath>

namespace engine {

namespace {

/// Light falls off with the fourth power of the cosine of the angle it comes in at, as in a lens; the radius
/// sets how wide that angle is in the corners (at 1, where the distance from the middle equals the distance
/// of the film) and the intensity mixes.
SpanFunction vignetteStep(Point middle, double perPixel, float intensity) {
    return [=](const Span& s, int x, int y, int n) {
        float step = static_cast<float>(perPixel), x0 = static_cast<float>((x + 0.5 - middle.x) * perPixel);
        float dy = static_cast<float>((y + 0.5 - middle.y) * perPixel);
        color::simd::run([=, r = s.plane[0], g = s.plane[1], b = s.plane[2]]() SIMD_INLINE {
            SIMD_LOOP
            for (int i = 0; i < n; ++i) {
                float dx = x0 + static_cast<float>(i) * step, cosine = 1 / (1 + dx * dx + dy * dy);
                float f = color::simd::max(1 + intensity * (cosine * cosine - 1), 0);
                r[i] *= f;
                g[i] *= f;
                b[i] *= f;
            }
        });
    };
}

Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    float intensity = static_cast<float>(in.number("inputIntensity", -10, 10));
    double radius = in.number("inputRadius", 0, 1000);
    // Without a middle there is nothing to fall off from.
    if (!image || image->extent().isEmpty() || image->extent().isInfinite() || intensity == 0 || radius == 0)
        return image;
    const Rect& e = image->extent();
    Point middle{(e.x0 + e.x1) / 2, (e.y0 + e.y1) / 2};
    double perPixel = radius * 2 / std::hypot(e.width(), e.height());
    return pointStep(image, "vignette",
                     [=](const RenderContext&) { return vignetteStep(middle, perPixel, intensity); });
}

/// As it is up to the radius, and darker and darker beyond; with a falloff of 1 over half the radius, with 0
/// at once. (Core Image does not tell its own formula.)
SpanFunction effectStep(Point centre, double radius, double falloff, float intensity) {
    double fade = std::max(falloff * radius / 2, 1.0);
    return [=, begin = static_cast<float>(radius / fade),
            perPixel = static_cast<float>(1 / fade)](const Span& s, int x, int y, int n) {
        float x0 = static_cast<float>(x + 0.5 - centre.x), dy = static_cast<float>(y + 0.5 - centre.y);
        color::simd::run([=, r = s.plane[0], g = s.plane[1], b = s.plane[2]]() SIMD_INLINE {
            SIMD_LOOP
            for (int i = 0; i < n; ++i) {
                float dx = x0 + static_cast<float>(i);
                float t = color::simd::unit(color::simd::sqrt(dx * dx + dy * dy) * perPixel - begin);
                float f = 1 - intensity * t * t * (3 - 2 * t);
                r[i] *= f;
                g[i] *= f;
                b[i] *= f;
            }
        });
    };
}

Image buildEffect(const Inputs& in) {
    float intensity = static_cast<float>(in.number("inputIntensity", -1, 1));
    if (intensity == 0) return in.image("inputImage");
    return pointStep(in.image("inputImage"), "vignette effect",
                     [=, centre = in.point("inputCenter"), radius = in.number("inputRadius", 0, 1e6),
                      falloff = in.number("inputFalloff", 0, 1)](const RenderContext&) {
                         return effectStep(centre, radius, falloff, intensity);
                     });
}

const Registrar effect{
    {"CIVignetteEffect",
     "Vignette Effect",
     "Darkens a picture outside of a circle.",
     "10.9",
     categories("ColorEffect Video Interlaced StillImage BuiltIn"),
     {imageInput(), vectorInput("inputCenter", "Center", "Position", {150, 150}),
      numberInput("inputRadius", "Radius", "Distance",
                  {.value = 150, .min = 0, .sliderMin = 0, .sliderMax = 2000}),
      numberInput("inputIntensity", "Intensity", "Scalar",
                  {.value = 1, .identity = 0, .min = -1, .max = 1, .sliderMin = -1, .sliderMax = 1}),
      numberInput("inputFalloff", "Falloff", "Scalar",
                  {.value = 0.5, .min = 0, .max = 1, .sliderMin = 0, .sliderMax = 1})},
     buildEffect}};

const Registrar filter{
    {"CIVignette",
     "Vignette",
     "Darkens a picture towards its corners.",
     "10.9",
     categories("ColorEffect Video Interlaced StillImage BuiltIn"),
     {imageInput(),
      numberInput("inputIntensity", "Intensity", "Scalar",
                  {.value = 0, .identity = 0, .min = -1, .max = 1, .sliderMin = -1, .sliderMax = 1}),
      numberInput("inputRadius", "Radius", "Scalar",
                  {.value = 1, .min = 0, .max = 2, .sliderMin = 0, .sliderMax = 2})},
     build}};

} // namespace

} // namespace engine
