// CIGlassDistortion: a picture seen through glass with a texture.
#include "filter.h"
#include "kernel.h"

#include <cmath>

namespace engine {

namespace {

/// The texture without end, repeated from the centre.
Image repeated(const Image& texture, Point centre) {
    if (texture->extent().isInfinite()) return texture;
    // By whole pixels, and by less than a copy.
    Rect e = texture->extent(), cell = e.integral();
    Affine move = Affine::translation(std::fmod(std::floor(centre.x) - cell.x0, cell.width()),
                                      std::fmod(std::floor(centre.y) - cell.y0, cell.height()));
    return apply(*findFilter("CIAffineTile"), {{"inputImage", transform(texture, move)}});
}

/// The gray of the texture is the height of the glass, and light is bent by its slope: a rise from black to
/// white within two pixels moves by the scale.
Image build(const Inputs& in) {
    Image image = in.image("inputImage"), texture = in.image("inputTexture");
    double scale = in.number("inputScale", 0, 1e5);
    if (scale == 0 || !texture || texture->extent().isEmpty()) return image;
    auto displace = [s = static_cast<float>(scale / 3)](const Span& map, std::ptrdiff_t step, int n,
                                                        float* dx, float* dy) {
        eachIndex(n, [=, r = map.plane[0], g = map.plane[1], b = map.plane[2]](int i) SIMD_INLINE {
            using simd::unit;
            dx[i] = s * (unit(r[i + 1]) + unit(g[i + 1]) + unit(b[i + 1]) - unit(r[i - 1]) - unit(g[i - 1]) -
                         unit(b[i - 1]));
            dy[i] = s * (unit(r[i + step]) + unit(g[i + step]) + unit(b[i + step]) - unit(r[i - step]) -
                         unit(g[i - step]) - unit(b[i - step]));
        });
    };
    return warp("glass", image, repeated(texture, in.point("inputCenter")), {scale, displace});
}

const Registrar filter{
    {"CIGlassDistortion",
     "Glass Distortion",
     "Shows a picture through glass with a texture.",
     ourOwn("light bent by the slope of the texture's gray"),
     "10.4",
     categories("DistortionEffect Video StillImage BuiltIn"),
     {imageInput(), imageInput("inputTexture", "Texture"),
      vectorInput("inputCenter", "Center", "Position", {150, 150}),
      numberInput("inputScale", "Scale", "Distance",
                  {.value = 200, .identity = 0, .min = 0, .sliderMin = 0.01, .sliderMax = 500})},
     build}};

} // namespace

} // namespace engine
