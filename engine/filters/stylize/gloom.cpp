// CIGloom: bright places grow dull.
#include "glow.h"

namespace engine {

/// From the picture towards the smaller of it and its blur, in each component and alpha; the intensity, at
/// most 1, is how far. So edges fade, and the extent is the blur's. (Fitted to Core Image's pictures: mean
/// residual 0.18 of 255 once their blur of coded colours is allowed for.)
static Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    double radius = in.number("inputRadius", 0, 1e6), intensity = in.number("inputIntensity", 0, 1);
    if (!image || radius == 0 || intensity == 0) return image;
    Image blurred = gaussian(image, radius);
    return eachPixel("gloom", blurred->extent(), {image, blurred},
                     [t = static_cast<float>(intensity)](Pixel p, Pixel q) SIMD_INLINE {
                         auto smaller = [](float v, float around)
                                            SIMD_INLINE { return simd::min(v, around); };
                         Pixel dull = eachColor(p, q, smaller);
                         dull.a = smaller(p.a, q.a);
                         return mix(p, dull, t);
                     });
}

static const Registrar filter{glowInfo("CIGloom", "Gloom", "Softens edges and dulls bright places.",
                                       fitted("towards the smaller of the picture and its blur (the residual "
                                              "is that of coded colours, as in the picture)",
                                              0.18),
                                       build)};

} // namespace engine
