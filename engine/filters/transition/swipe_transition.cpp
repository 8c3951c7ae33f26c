// CISwipeTransition: a coloured bar that leaves another picture behind.
#include "moving_bar.h"

namespace engine::transitions {

namespace {

/// Fitted to pictures of Core Image.
Image build(const Inputs& in) { return barMoved(in, 1, in.number("inputOpacity", 0, 1)); }

const Registrar filter{
    {"CISwipeTransition",
     "Swipe",
     "Moves a coloured bar over a picture and leaves another one behind it.",
     "10.4",
     categories("Transition Video StillImage BuiltIn"),
     {imageInput(), targetInput(), vectorInput("inputExtent", "Extent", "Rectangle", {0, 0, 300, 300}),
      colorInput("inputColor", "Color", "OpaqueColor", {1, 1, 1, 1}), timeInput(),
      numberInput("inputAngle", "Angle", "Angle",
                  {.value = 0, .identity = 0, .sliderMin = -pi, .sliderMax = pi}),
      numberInput("inputWidth", "Width", "Distance",
                  {.value = 300, .min = 0.1, .sliderMin = 0.1, .sliderMax = 800}),
      numberInput("inputOpacity", "Opacity", "Scalar",
                  {.value = 0, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 1})},
     build}};

} // namespace

} // namespace engine::transitions
