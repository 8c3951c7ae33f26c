#include "registry.h"

#include <color/vecmath.h>

namespace engine {

namespace {

namespace simd = color::simd;

template <std::size_t N>
std::array<float, N> coefficients(const Inputs& in, const char* key) {
    std::array<float, N> out;
    Numbers numbers = in.vector(key, N);
    std::transform(numbers.begin(), numbers.end(), out.begin(),
                   [](double v) { return static_cast<float>(v); });
    return out;
}

SIMD_INLINE inline float cubic(const std::array<float, 4>& k, float x) {
    return k[0] + x * (k[1] + x * (k[2] + x * k[3]));
}

/// k0 + k1 x + k2 x^2 + k3 x^3 of each component of the straight colour, as Apple documents it.
Image polynomial(const Inputs& in) {
    auto red = coefficients<4>(in, "inputRedCoefficients"),
         green = coefficients<4>(in, "inputGreenCoefficients");
    auto blue = coefficients<4>(in, "inputBlueCoefficients"),
         opacity = coefficients<4>(in, "inputAlphaCoefficients");
    return pointStep(in.image("inputImage"), "color polynomial", [=](const RenderContext&) -> SpanFunction {
        return [=](const Span& s, int, int, int n) {
            simd::run([=, r = s.plane[0], g = s.plane[1], b = s.plane[2], a = s.plane[3]]() SIMD_INLINE {
                SIMD_LOOP
                for (int i = 0; i < n; ++i) {
                    float inverse = a[i] > 0 ? 1 / a[i] : 0, alpha = cubic(opacity, a[i]);
                    r[i] = alpha * cubic(red, r[i] * inverse);
                    g[i] = alpha * cubic(green, g[i] * inverse);
                    b[i] = alpha * cubic(blue, b[i] * inverse);
                    a[i] = alpha;
                }
            });
        };
    });
}

SIMD_INLINE inline float quadratic(const std::array<float, 10>& k, float r, float g, float b) {
    return k[0] * r + k[1] * g + k[2] * b + k[3] * r * r + k[4] * g * g + k[5] * b * b + k[6] * r * g +
           k[7] * g * b + k[8] * b * r + k[9];
}

/// For each colour of the result the sum of r, g, b, r^2, g^2, b^2, rg, gb, br and 1, each times its
/// coefficient, as Apple documents it.
Image crossPolynomial(const Inputs& in) {
    auto red = coefficients<10>(in, "inputRedCoefficients"),
         green = coefficients<10>(in, "inputGreenCoefficients");
    auto blue = coefficients<10>(in, "inputBlueCoefficients");
    return pointStep(
        in.image("inputImage"), "color cross polynomial", [=](const RenderContext&) -> SpanFunction {
            return [=](const Span& s, int, int, int n) {
                simd::run([=, r = s.plane[0], g = s.plane[1], b = s.plane[2], a = s.plane[3]]() SIMD_INLINE {
                    SIMD_LOOP
                    for (int i = 0; i < n; ++i) {
                        float inverse = a[i] > 0 ? 1 / a[i] : 0;
                        float R = r[i] * inverse, G = g[i] * inverse, B = b[i] * inverse;
                        r[i] = a[i] * quadratic(red, R, G, B);
                        g[i] = a[i] * quadratic(green, R, G, B);
                        b[i] = a[i] * quadratic(blue, R, G, B);
                    }
                });
            };
        });
}

InputInfo coefficientsInput(const char* color, Numbers identity) {
    return vectorInput("input" + std::string(color) + "Coefficients", std::string(color) + " Coefficients",
                       "", identity, identity);
}

const Registrar polynomials{
    {"CIColorPolynomial",
     "Color Polynomial",
     "Makes each colour component a cubic polynomial of itself.",
     "10.9",
     categories("ColorAdjustment Video Interlaced NonSquarePixels StillImage BuiltIn"),
     {imageInput(), coefficientsInput("Red", {0, 1, 0, 0}), coefficientsInput("Green", {0, 1, 0, 0}),
      coefficientsInput("Blue", {0, 1, 0, 0}), coefficientsInput("Alpha", {0, 1, 0, 0})},
     polynomial}};

const Registrar crossPolynomials{
    {"CIColorCrossPolynomial",
     "Color Cross Polynomial",
     "Makes each colour component a quadratic polynomial of all three.",
     "10.9",
     categories("ColorEffect Video Interlaced NonSquarePixels StillImage BuiltIn"),
     {imageInput(), coefficientsInput("Red", {1, 0, 0, 0, 0, 0, 0, 0, 0, 0}),
      coefficientsInput("Green", {0, 1, 0, 0, 0, 0, 0, 0, 0, 0}),
      coefficientsInput("Blue", {0, 0, 1, 0, 0, 0, 0, 0, 0, 0})},
     crossPolynomial}};

} // namespace

} // namespace engine
