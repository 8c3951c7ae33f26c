// CIClamp: a rectangle of a picture whose edges go on for ever.
#include "filter.h"

namespace engine {

/// The edge pixels of the rectangle continued without end, Apple's documented definition.
static Image build(const Inputs& in) {
    return clampToEdge(crop(in.image("inputImage"), in.rect("inputExtent")));
}

static const Registrar filter{
    {"CIClamp",
     "Clamp",
     "Cuts a rectangle out of a picture and continues its edges without end.",
     publicDefinition("Apple's documented definition"),
     "10.12",
     categories("TileEffect Video StillImage BuiltIn"),
     {imageInput(), vectorInput("inputExtent", "Extent", "Rectangle", {0, 0, 640, 80})},
     build}};

} // namespace engine
