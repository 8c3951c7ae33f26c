#include "../src/registry.h"

namespace engine {

static const Registrar affineTransform{
    {"CIAffineTransform",
     "Affine Transform",
     "Moves, scales, turns or slants a picture.",
     "10.4",
     categories("GeometryAdjustment Video StillImage BuiltIn"),
     {imageInput(), transformInput("inputTransform", "Transform")},
     [](const Inputs& in) { return transform(in.image("inputImage"), in.affine("inputTransform")); }}};

/// The rectangle that Core Image writes for "everything".
static const Numbers everything{-8.98847e+307, -8.98847e+307, 1.79769e+308, 1.79769e+308};

static const Registrar cropTo{
    {"CICrop",
     "Crop",
     "Keeps the part of a picture inside a rectangle.",
     "10.4",
     categories("GeometryAdjustment Video StillImage BuiltIn"),
     {imageInput(), vectorInput("inputRectangle", "Rectangle", "Rectangle", everything, everything)},
     [](const Inputs& in) { return crop(in.image("inputImage"), in.rect("inputRectangle")); }}};

} // namespace engine
