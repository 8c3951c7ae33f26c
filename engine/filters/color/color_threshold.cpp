// CIColorThreshold: components that are 0 or 1.
#include "filter.h"
#include "kernel.h"

namespace engine {

/// 1 where a component of the straight colour is above the threshold, else 0; alpha stays: Apple's documented
/// definition.
static Image build(const Inputs& in) {
    return eachStraightColor(in.image("inputImage"), "color threshold",
                             [t = static_cast<float>(in.number("inputThreshold"))](float v)
                                 SIMD_INLINE { return v > t ? 1.0f : 0.0f; });
}

static const Registrar filter{
    {"CIColorThreshold",
     "Color Threshold",
     "Makes each colour component full or nothing.",
     publicDefinition("Apple's documented definition"),
     "11.0",
     categories("ColorAdjustment Video Interlaced NonSquarePixels StillImage BuiltIn"),
     {imageInput(),
      numberInput("inputThreshold", "Threshold", "Scalar", {.value = 0.5, .sliderMin = 0, .sliderMax = 1})},
     build}};

} // namespace engine
