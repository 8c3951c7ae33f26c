// CIPerspectiveTransformWithExtent: leans a picture so that the corners of a part come to four points.
#include "perspective.h"

namespace engine::perspective {

namespace {

/// The extent's corners come to the four points, and what lies around it comes along, as in Core Image's
/// picture.
Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    return image ? leaned(image, in.rect("inputExtent"), in) : nullptr;
}

std::vector<InputInfo> inputs() {
    std::vector<InputInfo> inputs = perspectiveInputs();
    inputs.insert(inputs.begin() + 1, vectorInput("inputExtent", "Extent", "Rectangle", {0, 0, 300, 300}));
    return inputs;
}

const Registrar filter{{"CIPerspectiveTransformWithExtent", "Perspective Transform with Extent",
                        "Leans a picture so that the corners of a part of it come to four points.",
                        publicDefinition("Heckbert's projective map, 1989, of a part's corners"), "10.4",
                        categories("GeometryAdjustment Video StillImage BuiltIn"), inputs(), build}};

} // namespace

} // namespace engine::perspective
