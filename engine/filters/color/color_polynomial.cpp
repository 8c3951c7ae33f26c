// CIColorPolynomial: a cubic for each component.
#include "filter.h"
#include "kernel.h"

namespace engine {

namespace {

SIMD_INLINE inline float cubic(const std::array<float, 4>& k, float x) {
    return k[0] + x * (k[1] + x * (k[2] + x * k[3]));
}

/// k0 + k1 x + k2 x^2 + k3 x^3 of each component of the straight colour: Apple's documented formula.
Image build(const Inputs& in) {
    auto red = floats<4>(in, "inputRedCoefficients"), green = floats<4>(in, "inputGreenCoefficients");
    auto blue = floats<4>(in, "inputBlueCoefficients"), alpha = floats<4>(in, "inputAlphaCoefficients");
    return eachStraightPixel(in.image("inputImage"), "color polynomial", [=](Pixel p) SIMD_INLINE -> Pixel {
        return {cubic(red, p.r), cubic(green, p.g), cubic(blue, p.b), cubic(alpha, p.a)};
    });
}

InputInfo coefficients(const char* component) {
    return vectorInput("input" + std::string(component) + "Coefficients",
                       std::string(component) + " Coefficients", "", {0, 1, 0, 0}, Numbers{0, 1, 0, 0});
}

const Registrar filter{
    {"CIColorPolynomial",
     "Color Polynomial",
     "Makes each colour component a cubic polynomial of itself.",
     publicDefinition("Apple's documented formula"),
     "10.9",
     categories("ColorAdjustment Video Interlaced NonSquarePixels StillImage BuiltIn"),
     {imageInput(), coefficients("Red"), coefficients("Green"), coefficients("Blue"), coefficients("Alpha")},
     build}};

} // namespace

} // namespace engine
