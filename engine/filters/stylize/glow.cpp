// A picture and its blur, both as light: what is bright spreads, or what is dark does.
#include "registry.h"

#include <color/vecmath.h>

namespace engine {

namespace {

namespace simd = color::simd;

struct Glow {
    Image image;
    double radius, intensity;
};

Glow read(const Inputs& in) {
    return {in.image("inputImage"), in.number("inputRadius", 0, 1e6), in.number("inputIntensity", 0, 100)};
}

/// As much as the intensity tells of the way to what the picture and its blur screened would be: 1 minus the
/// product of what both lack to white. The glow reaches beyond the edge. (The formula is ours.)
Image bloom(const Inputs& in) {
    Glow glow = read(in);
    if (!glow.image || glow.radius == 0 || glow.intensity == 0) return glow.image;
    Image blurred = gaussian(glow.image, glow.radius);
    return combine("bloom", blurred->extent(), {glow.image, blurred},
                   [t = static_cast<float>(glow.intensity)](const Span* pixels, int n) {
                       for (int c = 0; c < 4; ++c)
                           simd::run([=, p = pixels[0].plane[c], q = pixels[1].plane[c]]() SIMD_INLINE {
                               SIMD_LOOP
                               for (int i = 0; i < n; ++i) p[i] += t * q[i] * simd::max(1 - p[i], 0);
                           });
                   });
}

/// As much as the intensity tells of the way to the product of the picture and its blur, which takes from
/// bright places what their surroundings lack. Alpha stays. (The formula is ours.)
Image gloom(const Inputs& in) {
    Glow glow = read(in);
    if (!glow.image || glow.radius == 0 || glow.intensity == 0) return glow.image;
    return combine("gloom", glow.image->extent(),
                   {glow.image, gaussian(clampToEdge(glow.image), glow.radius)},
                   [t = static_cast<float>(glow.intensity)](const Span* pixels, int n) {
                       for (int c = 0; c < 3; ++c)
                           simd::run([=, p = pixels[0].plane[c], q = pixels[1].plane[c],
                                      a = pixels[1].plane[3]]() SIMD_INLINE {
                               SIMD_LOOP
                               for (int i = 0; i < n; ++i) {
                                   float lack = 1 - q[i] / simd::max(a[i], 1e-6f);
                                   p[i] *= simd::max(1 - t * simd::unit(lack), 0);
                               }
                           });
                   });
}

FilterInfo info(const char* name, const char* displayName, const char* description,
                Image (*build)(const Inputs&)) {
    return {name,
            displayName,
            description,
            "10.4",
            categories("Stylize Video StillImage BuiltIn"),
            {imageInput(),
             numberInput("inputRadius", "Radius", "Distance",
                         {.value = 10, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 100}),
             numberInput("inputIntensity", "Intensity", "Scalar",
                         {.value = 0.5, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 1})},
            build};
}

const Registrar blooms(info("CIBloom", "Bloom", "Softens edges and lets bright places glow.", bloom));
const Registrar glooms(info("CIGloom", "Gloom", "Softens edges and dulls bright places.", gloom));

} // namespace

} // namespace engine
