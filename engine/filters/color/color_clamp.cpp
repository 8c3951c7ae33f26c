// CIColorClamp: components kept between limits.
#include "filter.h"
#include "kernel.h"

namespace engine {

/// Each component of the straight colour is kept between two limits; the upper one wins.
static Image build(const Inputs& in) {
    auto low = floats<4>(in, "inputMinComponents"), high = floats<4>(in, "inputMaxComponents");
    return eachStraightPixel(in.image("inputImage"), "color clamp", [=](Pixel p) SIMD_INLINE -> Pixel {
        return {simd::clamp(p.r, low[0], high[0]), simd::clamp(p.g, low[1], high[1]),
                simd::clamp(p.b, low[2], high[2]), simd::clamp(p.a, low[3], high[3])};
    });
}

static const Registrar filter{
    {"CIColorClamp",
     "Color Clamp",
     "Keeps each colour component between two limits.",
     publicDefinition("each component kept between two limits"),
     "10.9",
     categories("ColorAdjustment Video Interlaced NonSquarePixels StillImage BuiltIn"),
     {imageInput(), vectorInput("inputMinComponents", "Min Components", "", {0, 0, 0, 0}),
      vectorInput("inputMaxComponents", "Max Components", "", {1, 1, 1, 1})},
     build}};

} // namespace engine
