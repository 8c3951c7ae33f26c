// Distortions that a second picture draws. (Core Image does not tell its own formulas.)
#include "registry.h"

#include <color/vecmath.h>

#include <cmath>

namespace engine {

namespace {

/// Red moves across and green upwards, so that gray moves along the diagonal: by half the scale to either
/// side, not at all where it is 0.5. Outside of the map nothing moves.
Image displaced(const Inputs& in) {
    Image image = in.image("inputImage");
    double scale = in.number("inputScale", 0, 1e5);
    if (scale == 0) return image;
    auto displace = [s = static_cast<float>(scale)](const Span& map, std::ptrdiff_t, int n, float* dx,
                                                    float* dy) {
        color::simd::run([=, r = map.plane[0], g = map.plane[1], a = map.plane[3]]() SIMD_INLINE {
            SIMD_LOOP
            for (int i = 0; i < n; ++i) {
                dx[i] = s * color::simd::clamp(r[i] - 0.5f * a[i], -0.5f, 0.5f);
                dy[i] = s * color::simd::clamp(g[i] - 0.5f * a[i], -0.5f, 0.5f);
            }
        });
    };
    return warp("displacement", image, in.image("inputDisplacementImage"), {scale / 2, displace});
}

/// The texture, repeated without end from the centre, is the height of a glass in gray; light is bent by how
/// steeply that rises. From black to white within two pixels moves by the scale.
Image throughGlass(const Inputs& in) {
    Image image = in.image("inputImage"), texture = in.image("inputTexture");
    double scale = in.number("inputScale", 0, 1e5);
    if (scale == 0 || !texture || texture->extent().isEmpty()) return image;
    if (!texture->extent().isInfinite()) {
        // Whole pixels, and less than a copy away.
        Point c = in.point("inputCenter");
        Rect e = texture->extent(), cell = e.integral();
        Affine move = Affine::translation(std::fmod(std::floor(c.x) - cell.x0, cell.width()),
                                          std::fmod(std::floor(c.y) - cell.y0, cell.height()));
        texture = apply(*findFilter("CIAffineTile"), {{"inputImage", transform(texture, move)}});
    }
    auto displace = [s = static_cast<float>(scale / 3)](const Span& map, std::ptrdiff_t step, int n,
                                                        float* dx, float* dy) {
        color::simd::run([=, r = map.plane[0], g = map.plane[1], b = map.plane[2]]() SIMD_INLINE {
            using color::simd::unit;
            SIMD_LOOP
            for (int i = 0; i < n; ++i) {
                dx[i] = s * (unit(r[i + 1]) + unit(g[i + 1]) + unit(b[i + 1]) - unit(r[i - 1]) -
                             unit(g[i - 1]) - unit(b[i - 1]));
                dy[i] = s * (unit(r[i + step]) + unit(g[i + step]) + unit(b[i + step]) - unit(r[i - step]) -
                             unit(g[i - step]) - unit(b[i - step]));
            }
        });
    };
    return warp("glass", image, texture, {scale, displace});
}

InputInfo mapInput() {
    InputInfo info = imageInput("inputDisplacementImage", "Displacement Image");
    info.type.clear();
    return info;
}

const Registrar displacements{
    {"CIDisplacementDistortion",
     "Displacement Distortion",
     "Moves each pixel as far as a second picture says.",
     "10.4",
     categories("DistortionEffect Video StillImage BuiltIn"),
     {imageInput(), mapInput(),
      numberInput("inputScale", "Scale", "Distance",
                  {.value = 50, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 200})},
     displaced}};

const Registrar glasses{
    {"CIGlassDistortion",
     "Glass Distortion",
     "Shows a picture through glass with a texture.",
     "10.4",
     categories("DistortionEffect Video StillImage BuiltIn"),
     {imageInput(), imageInput("inputTexture", "Texture"),
      vectorInput("inputCenter", "Center", "Position", {150, 150}),
      numberInput("inputScale", "Scale", "Distance",
                  {.value = 200, .identity = 0, .min = 0, .sliderMin = 0.01, .sliderMax = 500})},
     throughGlass}};

} // namespace

} // namespace engine
