// CIMaximumComponent: the largest of a pixel's three colours, as gray.
#include "filter.h"
#include "kernel.h"

namespace engine {

/// Public definition.
static Image build(const Inputs& in) {
    return eachPixel(in.image("inputImage"), "maximum component",
                     [](Pixel p) SIMD_INLINE { return gray(largest(p), p.a); });
}

static const Registrar filter{{"CIMaximumComponent",
                               "Maximum Component",
                               "Makes a gray picture of the largest component of each pixel.",
                               publicDefinition("the largest component"),
                               "10.5",
                               categories("ColorEffect Video Interlaced NonSquarePixels StillImage BuiltIn"),
                               {imageInput()},
                               build}};

} // namespace engine
