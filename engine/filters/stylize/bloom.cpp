// CIBloom: bright places glow.
#include "glow.h"

namespace engine {

/// From the picture towards the larger of it and its blur, in each component and alpha; the intensity is how
/// far. The glow reaches beyond the edge. (Fitted to Core Image's picture: mean residual 0.27 of 255 once its
/// blur of coded colours is allowed for.)
static Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    double radius = in.number("inputRadius", 0, 1e6), intensity = in.number("inputIntensity", 0, 100);
    if (!image || radius == 0 || intensity == 0) return image;
    Image blurred = gaussian(image, radius);
    return eachPixel("bloom", blurred->extent(), {image, blurred},
                     [t = static_cast<float>(intensity)](Pixel p, Pixel q) SIMD_INLINE {
                         auto larger = [](float v, float glow) SIMD_INLINE { return simd::max(v, glow); };
                         Pixel lit = eachColor(p, q, larger);
                         lit.a = larger(p.a, q.a);
                         return mix(p, lit, t);
                     });
}

static const Registrar filter{glowInfo("CIBloom", "Bloom", "Softens edges and lets bright places glow.",
                                       fitted("towards the larger of the picture and its blur (the residual "
                                              "is that of coded colours, as in the picture)",
                                              0.27),
                                       build)};

} // namespace engine
