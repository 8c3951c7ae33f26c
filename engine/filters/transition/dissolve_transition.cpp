// CIDissolveTransition: fades from one picture to another.
#include "transition.h"

namespace engine::transitions {

namespace {

/// A mix of light: (1 - time) of the image and time of the target.
Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    return image ? sum(weighted(image, 1 - time(in)), weighted(in.image("inputTargetImage"), time(in)))
                 : nullptr;
}

const Registrar filter{{"CIDissolveTransition",
                        "Dissolve",
                        "Fades from one picture to another.",
                        publicDefinition("a mix of light"),
                        "10.4",
                        categories("Transition Video StillImage Interlaced NonSquarePixels BuiltIn"),
                        {imageInput(), targetInput(), timeInput()},
                        build}};

} // namespace

} // namespace engine::transitions
