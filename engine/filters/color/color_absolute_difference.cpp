// CIColorAbsoluteDifference: how much the colours of two pictures differ.
#include "filter.h"
#include "kernel.h"

namespace engine {

namespace {

/// |p - q| of each straight colour, over the product of the alphas: Apple's documented definition.
Image build(const Inputs& in) {
    Image first = in.image("inputImage"), second = in.image("inputImage2");
    if (!first || !second) return nullptr;
    return eachPixel("absolute difference", first->extent().intersect(second->extent()), {first, second},
                     [](Pixel p, Pixel q) SIMD_INLINE {
                         Pixel out = eachColor(straight(p), straight(q),
                                               [](float x, float y) SIMD_INLINE { return simd::abs(x - y); });
                         out.a = p.a * q.a;
                         return premultiplied(out);
                     });
}

InputInfo secondInput() {
    InputInfo info = imageInput("inputImage2", "Image2");
    info.type.clear();
    return info;
}

const Registrar filter{{"CIColorAbsoluteDifference",
                        "Color Absolute Difference",
                        "Shows how much the colours of two pictures differ.",
                        publicDefinition("Apple's documented formula"),
                        "11.0",
                        categories("ColorAdjustment Video Interlaced NonSquarePixels StillImage BuiltIn"),
                        {imageInput(), secondInput()},
                        build}};

} // namespace

} // namespace engine
