// CIPerspectiveTransform: leans a picture so that its corners come to four points.
#include "perspective.h"

namespace engine::perspective {

namespace {

Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    return image ? leaned(image, image->extent(), in) : nullptr;
}

const Registrar filter{{"CIPerspectiveTransform", "Perspective Transform",
                        "Leans a picture so that its corners come to four points.",
                        publicDefinition("Heckbert's projective map, 1989"), "10.4",
                        categories("GeometryAdjustment Video StillImage BuiltIn"), perspectiveInputs(),
                        build}};

} // namespace

} // namespace engine::perspective
