// CIAffineTransform: moves, scales, turns or slants a picture.
#include "filter.h"

namespace engine {

namespace {

const Registrar filter{
    {"CIAffineTransform",
     "Affine Transform",
     "Moves, scales, turns or slants a picture.",
     publicDefinition("an affine map"),
     "10.4",
     categories("GeometryAdjustment Video StillImage BuiltIn"),
     {imageInput(), transformInput("inputTransform", "Transform")},
     [](const Inputs& in) { return transform(in.image("inputImage"), in.affine("inputTransform")); }}};

} // namespace

} // namespace engine
