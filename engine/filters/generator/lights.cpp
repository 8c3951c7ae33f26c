// Lights to lay over a picture.
#include "registry.h"

#include <color/vecmath.h>

#include <cmath>

namespace engine {

namespace {

constexpr double pi = 3.141592653589793;
namespace simd = color::simd;

/// Always the same 0..1 for the same whole numbers (C. Wellons, "Prospecting for Hash Functions", 2018).
SIMD_INLINE inline float noiseAt(std::uint32_t x, std::uint32_t y) {
    std::uint32_t h = x * 0x9e3779b1u + y * 0x85ebca77u;
    h = (h ^ (h >> 16)) * 0x7feb352du;
    h = (h ^ (h >> 15)) * 0x846ca68bu;
    h ^= h >> 16;
    return static_cast<float>(static_cast<int>(h >> 8)) * (1.f / 16777215.f);
}

/// Rays around a centre: noise over the direction and time, 0..1, smooth. `perTurn` rays go around, a power
/// of 2.
SIMD_INLINE inline float rayAt(float turns, float time, int perTurn) {
    float place = turns * static_cast<float>(perTurn), step = simd::floor(place), t = place - step;
    float moment = simd::floor(time), s = time - moment;
    t = t * t * (3 - 2 * t);
    s = s * s * (3 - 2 * s);
    auto mask = static_cast<std::uint32_t>(perTurn - 1);
    auto k = static_cast<std::uint32_t>(static_cast<int>(step)),
         m = static_cast<std::uint32_t>(static_cast<int>(moment));
    float now = simd::mix(noiseAt(k & mask, m), noiseAt((k + 1) & mask, m), t);
    float next = simd::mix(noiseAt(k & mask, m + 1), noiseAt((k + 1) & mask, m + 1), t);
    return simd::mix(now, next, s);
}

/// The direction of a place in turns, 0..1, to 1e-5: atan by a polynomial (M. Abramowitz, I. Stegun,
/// "Handbook of Mathematical Functions", 1964, 4.4.49).
SIMD_INLINE inline float turnsOf(float x, float y) {
    float ax = simd::abs(x), ay = simd::abs(y);
    float q = simd::min(ax, ay) / simd::max(simd::max(ax, ay), 1e-9f), q2 = q * q;
    float a =
        q * (0.9998660f + q2 * (-0.3302995f + q2 * (0.1801410f + q2 * (-0.0851330f + q2 * 0.0208351f))));
    a *= static_cast<float>(0.5 / pi);
    a = ay > ax ? 0.25f - a : a;
    a = x < 0 ? 0.5f - a : a;
    return y < 0 ? 1 - a : a;
}

/// Brighter and darker rays, as the strength and the contrast have it: around one half.
SIMD_INLINE inline float striation(float noise, float contrast) {
    return simd::max(0.5f + contrast * (noise - 0.5f), 0);
}

/// A colour, each component as bright as `amount(distance from the centre, direction in turns, component)`
/// says; as opaque as the brightest.
template <class F>
Image light(std::string name, const Inputs& in, double reach, F amount) {
    Point c = in.point("inputCenter");
    return generator(std::move(name), {c.x - reach, c.y - reach, c.x + reach, c.y + reach},
                     [=, color = in.color("inputColor")](const RenderContext& context) -> SpanFunction {
                         return [=, rgba = context.color(color)](const Span& out, int x, int y, int n) {
                             float x0 = static_cast<float>(x + 0.5 - c.x),
                                   dy = static_cast<float>(y + 0.5 - c.y);
                             simd::run([=, r = out.plane[0], g = out.plane[1], b = out.plane[2],
                                        a = out.plane[3]]() SIMD_INLINE {
                                 SIMD_LOOP
                                 for (int i = 0; i < n; ++i) {
                                     float dx = x0 + static_cast<float>(i),
                                           distance = simd::sqrt(dx * dx + dy * dy);
                                     float turns = turnsOf(dx, dy);
                                     float red = simd::unit(amount(distance, turns, 0.f));
                                     float green = simd::unit(amount(distance, turns, 1.f));
                                     float blue = simd::unit(amount(distance, turns, 2.f));
                                     r[i] = rgba[0] * red;
                                     g[i] = rgba[1] * green;
                                     b[i] = rgba[2] * blue;
                                     a[i] = rgba[3] * simd::max(simd::max(red, green), blue);
                                 }
                             });
                         };
                     });
}

/// How rays go around.
struct Rays {
    float contrast, time;

    explicit Rays(const Inputs& in)
        : contrast(static_cast<float>(in.number("inputStriationStrength", 0, 100) *
                                      in.number("inputStriationContrast", 0, 100))),
          time(static_cast<float>(8 * in.number("inputTime", 0, 1))) {}
    SIMD_INLINE float at(float turns) const {
        return striation(0.3f * rayAt(turns, time, 64) + 0.7f * rayAt(turns, time, 256), contrast);
    }
};

/// A disc, and rays that fade with the distance from it: gone at (1 + the greatest striation radius) radii.
/// (Core Image does not tell its own formula.)
Image sunbeams(const Inputs& in) {
    double radius = std::max(in.number("inputSunRadius", 0, 1e5), 0.5);
    double reach = std::max(in.number("inputMaxStriationRadius", 0, 1000), 1e-3);
    return light("sunbeams", in, radius * (1 + reach),
                 [=, rays = Rays(in), perRadius = static_cast<float>(1 / radius),
                  perReach = static_cast<float>(1 / reach)](float distance, float turns, float) SIMD_INLINE {
                     float beyond = distance * perRadius - 1, disc = simd::unit(1 - 8 * beyond);
                     float fade = simd::unit(1 - beyond * perReach);
                     return simd::max(disc, 2 * fade * fade * rays.at(turns));
                 });
}

/// A ring of rays from the radius outwards, as wide as the width. It comes and goes as t^2 (3 - 2 t), and at
/// strength and contrast 1 the mean of its rays is one half, as measured on Core Image (which has other
/// rays). Where the overlap is less than 1, red lies that much farther out than green, and blue farther in.
Image halo(const Inputs& in) {
    double radius = in.number("inputHaloRadius", 0, 1e5),
           width = std::max(in.number("inputHaloWidth", 0, 1e5), 0.5);
    double apart = (1 - in.number("inputHaloOverlap", 0, 1)) * width;
    return light(
        "halo", in, radius + width + apart,
        [=, rays = Rays(in), begin = static_cast<float>(radius + apart), step = static_cast<float>(apart),
         perWidth = static_cast<float>(1 / width)](float distance, float turns, float component) SIMD_INLINE {
            float across = (distance - begin + component * step) * perWidth;
            float t = simd::max(1 - simd::abs(2 * across - 1), 0);
            return t * t * (3 - 2 * t) * rays.at(turns);
        });
}

InputInfo number(std::string key, std::string displayName, const NumberFacts& facts) {
    return numberInput(std::move(key), std::move(displayName), "Scalar", facts);
}

const Registrar suns{
    {"CISunbeamsGenerator",
     "Sunbeams",
     "Makes a sun with rays.",
     "10.4",
     categories("Generator Video StillImage BuiltIn"),
     {vectorInput("inputCenter", "Center", "Position", {150, 150}),
      colorInput("inputColor", "Color", "", {1, 0.5, 0, 1}),
      numberInput("inputSunRadius", "Sun Radius", "Distance",
                  {.value = 40, .identity = 40, .min = 0, .sliderMin = 0, .sliderMax = 800}),
      number("inputMaxStriationRadius", "Maximum Striation Radius",
             {.value = 2.58, .identity = 2.58, .min = 0, .sliderMin = 0, .sliderMax = 10}),
      number("inputStriationStrength", "Striation Strength",
             {.value = 0.5, .identity = 0.5, .min = 0, .sliderMin = 0, .sliderMax = 3}),
      number("inputStriationContrast", "Striation Contrast",
             {.value = 1.375, .identity = 1.375, .min = 0, .sliderMin = 0, .sliderMax = 5}),
      number("inputTime", "Time",
             {.value = 0, .identity = 0, .min = 0, .max = 1, .sliderMin = 0, .sliderMax = 1})},
     sunbeams}};

const Registrar halos{
    {"CILenticularHaloGenerator",
     "Lenticular Halo",
     "Makes a ring of light, as a lens shows it around a lamp.",
     "10.4",
     categories("Generator Video StillImage BuiltIn"),
     {vectorInput("inputCenter", "Center", "Position", {150, 150}),
      colorInput("inputColor", "Color", "", {1, 0.9, 0.8, 1}),
      numberInput("inputHaloRadius", "Halo Radius", "Distance",
                  {.value = 70, .min = 0, .sliderMin = 0, .sliderMax = 1000}),
      numberInput("inputHaloWidth", "Halo Width", "Distance",
                  {.value = 87, .min = 0, .sliderMin = 0, .sliderMax = 300}),
      number("inputHaloOverlap", "Halo Overlap", {.value = 0.77, .min = 0, .sliderMin = 0, .sliderMax = 1}),
      number("inputStriationStrength", "Striation Strength",
             {.value = 0.5, .min = 0, .sliderMin = 0, .sliderMax = 3}),
      number("inputStriationContrast", "Striation Contrast",
             {.value = 1, .min = 0, .sliderMin = 0, .sliderMax = 5}),
      number("inputTime", "Time",
             {.value = 0, .identity = 0, .min = 0, .max = 1, .sliderMin = 0, .sliderMax = 1})},
     halo}};

/// Each component of each pixel a number of 0..1 of its own, always the same ones.
Image randomPixels(const Inputs&) {
    return generator("random", Rect::infinite(), [](const RenderContext&) -> SpanFunction {
        return [](const Span& out, int x, int y, int n) {
            for (int c = 0; c < 4; ++c)
                simd::run([=, p = out.plane[c]]() SIMD_INLINE {
                    SIMD_LOOP
                    for (int i = 0; i < n; ++i)
                        p[i] = noiseAt(static_cast<std::uint32_t>(x + i),
                                       static_cast<std::uint32_t>(y) +
                                           0x51ed270bu * static_cast<std::uint32_t>(c));
                });
            // Straight colours, which alpha then makes less of.
            for (int c = 0; c < 3; ++c)
                simd::run([=, p = out.plane[c], a = out.plane[3]]() SIMD_INLINE {
                    SIMD_LOOP
                    for (int i = 0; i < n; ++i) p[i] *= a[i];
                });
        };
    });
}

const Registrar random{{"CIRandomGenerator",
                        "Random Generator",
                        "Makes noise: four random numbers for each pixel.",
                        "10.4",
                        categories("Generator Video StillImage BuiltIn"),
                        {},
                        randomPixels}};

} // namespace

} // namespace engine
