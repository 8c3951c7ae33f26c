// CICopyMachineTransition: a bar of light that leaves another picture behind, as a copier does.
#include "moving_bar.h"

namespace engine::transitions {

namespace {

/// The picture turns within a pixel, under the light in the middle of the bar. (Core Image does not document
/// its formula.)
Image build(const Inputs& in) {
    double width = in.number("inputWidth", 0.1, 1e6);
    return barMoved(in, static_cast<float>(std::max(width, 1.0)), in.number("inputOpacity", 0, 3));
}

const Registrar filter{
    {"CICopyMachineTransition",
     "Copy Machine",
     "Moves a bar of light over a picture and leaves another one behind it, as a copier does.",
     "10.4",
     categories("Transition Video StillImage BuiltIn"),
     {imageInput(), targetInput(), vectorInput("inputExtent", "Extent", "Rectangle", {0, 0, 300, 300}),
      colorInput("inputColor", "Color", "OpaqueColor", {0.6, 1, 0.8, 1}), timeInput(),
      numberInput("inputAngle", "Angle", "Angle",
                  {.value = 0, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 2 * pi}),
      numberInput("inputWidth", "Width", "Distance",
                  {.value = 200, .identity = 200, .min = 0.1, .sliderMin = 0.1, .sliderMax = 500}),
      numberInput("inputOpacity", "Opacity", "Scalar",
                  {.value = 1.3, .identity = 1.3, .min = 0, .sliderMin = 0, .sliderMax = 3})},
     build}};

} // namespace

} // namespace engine::transitions
