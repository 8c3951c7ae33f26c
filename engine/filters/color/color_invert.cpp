// CIColorInvert: the negative.
#include "filter.h"

namespace engine {

/// 1 - rgb on straight colour; alpha stays.
static Image build(const Inputs& in) {
    return colorMatrix(in.image("inputImage"), colorsOnly({-1, 0, 0, 0, -1, 0, 0, 0, -1}, 1));
}

static const Registrar filter{{"CIColorInvert",
                               "Color Invert",
                               "Turns a picture into its negative.",
                               publicDefinition("1 - rgb"),
                               "10.4",
                               categories("ColorEffect Video Interlaced NonSquarePixels StillImage BuiltIn"),
                               {imageInput()},
                               build}};

} // namespace engine
