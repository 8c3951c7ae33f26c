// CIAffineClamp: a picture, transformed, whose edges continue without end.
#include "filter.h"

namespace engine {

namespace {

Image build(const Inputs& in) {
    return transform(clampToEdge(in.image("inputImage")), in.affine("inputTransform"));
}

const Registrar filter{{"CIAffineClamp",
                        "Affine Clamp",
                        "Transforms a picture and continues its edges without end.",
                        publicDefinition("the edge pixels continued"),
                        "10.4",
                        categories("TileEffect Video StillImage BuiltIn"),
                        {imageInput(), transformInput("inputTransform", "Transform", "")},
                        build}};

} // namespace

} // namespace engine
