// CICrop: the part of a picture inside a rectangle.
#include "filter.h"

namespace engine {

namespace {

/// CGRectInfinite, as a 32-bit Core Graphics writes it: half and all of what a float holds.
const Numbers everything{-0x1.fffffep+126, -0x1.fffffep+126, 0x1.fffffep+127, 0x1.fffffep+127};

const Registrar filter{
    {"CICrop",
     "Crop",
     "Keeps the part of a picture inside a rectangle.",
     publicDefinition("pixels whose centres lie inside"),
     "10.4",
     categories("GeometryAdjustment Video StillImage BuiltIn"),
     {imageInput(), vectorInput("inputRectangle", "Rectangle", "Rectangle", everything, everything)},
     [](const Inputs& in) { return crop(in.image("inputImage"), in.rect("inputRectangle")); }}};

} // namespace

} // namespace engine
