// CIPerspectiveTransformWithExtent: leans a part of a picture so that its corners come to four points.
#include "perspective.h"

namespace engine::perspective {

namespace {

Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    Rect extent = in.rect("inputExtent");
    return image ? leaned(crop(image, extent), extent, in) : nullptr;
}

std::vector<InputInfo> inputs() {
    std::vector<InputInfo> inputs = perspectiveInputs();
    inputs.insert(inputs.begin() + 1, vectorInput("inputExtent", "Extent", "Rectangle", {0, 0, 300, 300}));
    return inputs;
}

const Registrar filter{{"CIPerspectiveTransformWithExtent", "Perspective Transform with Extent",
                        "Leans a part of a picture so that its corners come to four points.", "10.4",
                        categories("GeometryAdjustment Video StillImage BuiltIn"), inputs(), build}};

} // namespace

} // namespace engine::perspective
