// CIMaskToAlpha: brightness as alpha.
#include "filter.h"
#include "kernel.h"

namespace engine {

/// White that is as opaque as the pixel is bright. (Public definition; that brightness is linear
/// luminance is fitted to Core Image's pictures.)
static Image build(const Inputs& in) {
    return eachPixel(in.image("inputImage"), "mask to alpha", [](Pixel p) SIMD_INLINE {
        float bright = simd::unit(luminance(p));
        return gray(bright, bright);
    });
}

static const Registrar filter{
    {"CIMaskToAlpha",
     "Mask to Alpha",
     "Turns a picture in grays into white that is opaque where the picture is bright.",
     publicDefinition("white as opaque as the pixel is bright; that it is linear luminance is fitted"),
     "10.4",
     categories("ColorEffect Video Interlaced NonSquarePixels StillImage BuiltIn"),
     {imageInput()},
     build}};

} // namespace engine
