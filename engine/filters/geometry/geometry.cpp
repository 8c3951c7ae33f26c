#include "registry.h"

namespace engine {

static const Registrar affineTransform{
    {"CIAffineTransform",
     "Affine Transform",
     "Moves, scales, turns or slants a picture.",
     "10.4",
     categories("GeometryAdjustment Video StillImage BuiltIn"),
     {imageInput(), transformInput("inputTransform", "Transform")},
     [](const Inputs& in) { return transform(in.image("inputImage"), in.affine("inputTransform")); }}};

/// CGRectInfinite, as a 32-bit Core Graphics writes it: half and all of what a float holds.
static const Numbers everything{-0x1.fffffep+126, -0x1.fffffep+126, 0x1.fffffep+127, 0x1.fffffep+127};

static const Registrar cropTo{
    {"CICrop",
     "Crop",
     "Keeps the part of a picture inside a rectangle.",
     "10.4",
     categories("GeometryAdjustment Video StillImage BuiltIn"),
     {imageInput(), vectorInput("inputRectangle", "Rectangle", "Rectangle", everything, everything)},
     [](const Inputs& in) { return crop(in.image("inputImage"), in.rect("inputRectangle")); }}};

} // namespace engine
