// CIMinimumComponent: the smallest of a pixel's three colours, as gray.
#include "filter.h"
#include "kernel.h"

namespace engine {

/// Public definition.
static Image build(const Inputs& in) {
    return eachPixel(in.image("inputImage"), "minimum component",
                     [](Pixel p) SIMD_INLINE { return gray(smallest(p), p.a); });
}

static const Registrar filter{{"CIMinimumComponent",
                               "Minimum Component",
                               "Makes a gray picture of the smallest component of each pixel.",
                               publicDefinition("the smallest component"),
                               "10.5",
                               categories("ColorEffect Video Interlaced NonSquarePixels StillImage BuiltIn"),
                               {imageInput()},
                               build}};

} // namespace engine
