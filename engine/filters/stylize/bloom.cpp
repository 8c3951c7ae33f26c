// CIBloom: bright places glow.
#include "glow.h"

namespace engine {

/// From the picture towards what it and its blur screened would be, 1 minus the product of what both lack to
/// white; the intensity is how far. The glow reaches beyond the edge. (The formula is ours.)
static Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    double radius = in.number("inputRadius", 0, 1e6), intensity = in.number("inputIntensity", 0, 100);
    if (!image || radius == 0 || intensity == 0) return image;
    Image blurred = gaussian(image, radius);
    return eachPixel("bloom", blurred->extent(), {image, blurred},
                     [t = static_cast<float>(intensity)](Pixel p, Pixel q) SIMD_INLINE -> Pixel {
                         auto lit = [=](float v, float glow)
                                        SIMD_INLINE { return v + t * glow * simd::max(1 - v, 0); };
                         return {lit(p.r, q.r), lit(p.g, q.g), lit(p.b, q.b), lit(p.a, q.a)};
                     });
}

static const Registrar filter{
    glowInfo("CIBloom", "Bloom", "Softens edges and lets bright places glow.", build)};

} // namespace engine
