// CIColorCrossPolynomial: a quadratic of all three colours for each of them.
#include "filter.h"
#include "kernel.h"

namespace engine {

namespace {

SIMD_INLINE inline float quadratic(const std::array<float, 10>& k, Pixel p) {
    float r = p.r, g = p.g, b = p.b;
    return k[0] * r + k[1] * g + k[2] * b + k[3] * r * r + k[4] * g * g + k[5] * b * b + k[6] * r * g +
           k[7] * g * b + k[8] * b * r + k[9];
}

/// For each colour of the result the sum of r, g, b, r^2, g^2, b^2, rg, gb, br and 1, each times its
/// coefficient: Apple's documented formula.
Image build(const Inputs& in) {
    auto red = floats<10>(in, "inputRedCoefficients"), green = floats<10>(in, "inputGreenCoefficients");
    auto blue = floats<10>(in, "inputBlueCoefficients");
    return eachStraightPixel(in.image("inputImage"), "color cross polynomial",
                             [=](Pixel p) SIMD_INLINE -> Pixel {
                                 return {quadratic(red, p), quadratic(green, p), quadratic(blue, p), p.a};
                             });
}

/// The standard is the component itself.
InputInfo coefficients(const char* color, int component) {
    Numbers itself(10);
    itself[component] = 1;
    return vectorInput("input" + std::string(color) + "Coefficients", std::string(color) + " Coefficients",
                       "", itself, itself);
}

const Registrar filter{
    {"CIColorCrossPolynomial",
     "Color Cross Polynomial",
     "Makes each colour component a quadratic polynomial of all three.",
     publicDefinition("Apple's documented formula"),
     "10.9",
     categories("ColorEffect Video Interlaced NonSquarePixels StillImage BuiltIn"),
     {imageInput(), coefficients("Red", 0), coefficients("Green", 1), coefficients("Blue", 2)},
     build}};

} // namespace

} // namespace engine
