// CIGloom: bright places grow dull.
#include "glow.h"

namespace engine {

/// From the picture towards the product of it and its blur, which takes from bright places what their
/// surroundings lack; the intensity is how far. Alpha stays. (The formula is ours.)
static Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    double radius = in.number("inputRadius", 0, 1e6), intensity = in.number("inputIntensity", 0, 100);
    if (!image || radius == 0 || intensity == 0) return image;
    return eachPixel("gloom", image->extent(), {image, gaussian(clampToEdge(image), radius)},
                     [t = static_cast<float>(intensity)](Pixel p, Pixel q) SIMD_INLINE {
                         return eachColor(p, straight(q), [=](float v, float around) SIMD_INLINE {
                             return v * simd::max(1 - t * simd::unit(1 - around), 0);
                         });
                     });
}

static const Registrar filter{glowInfo("CIGloom", "Gloom", "Softens edges and dulls bright places.", build)};

} // namespace engine
