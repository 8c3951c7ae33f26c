// CIHeightFieldFromMask: heights that rise from the edges of a mask.
#include "filter.h"
#include "kernel.h"

namespace engine {

/// The mask blurred and cut out by itself again and again, each time with half the radius before: outside of
/// the mask all stays black, inside it heights rise from the edge to the middle. Alpha is the mask's. Fitted
/// to a picture of Core Image's, from which it differs by half a step of 255 in the mean.
static Image build(const Inputs& in) {
    Image mask = in.image("inputImage"), field = mask;
    double radius = in.number("inputRadius", 0, 300);
    if (!mask || mask->extent().isEmpty()) return mask;
    for (; radius > 0.7; radius /= 2)
        field = eachPixel("height field", mask->extent(), {mask, gaussian(clampToEdge(field), radius)},
                          [](Pixel p, Pixel height) SIMD_INLINE {
                              return eachColor(p, straight(height),
                                               [](float v, float h) SIMD_INLINE { return v * h; });
                          });
    return field;
}

static const Registrar filter{
    {"CIHeightFieldFromMask",
     "Height Field From Mask",
     "Makes heights of a mask that rise from its edges, as clay would.",
     fitted("the mask blurred and cut out by itself, again and again", 0.5),
     "10.4",
     categories("Stylize Video StillImage BuiltIn"),
     {imageInput(), numberInput("inputRadius", "Radius", "Distance",
                                {.value = 10, .identity = 10, .min = 0, .sliderMin = 0, .sliderMax = 300})},
     build}};

} // namespace engine
