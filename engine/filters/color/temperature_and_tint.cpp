// CITemperatureAndTint: the white of one light as that of another.
#include "filter.h"

#include <cmath>

namespace engine {

namespace {

using Matrix = std::array<double, 9>;
using Vector = std::array<double, 3>;

Vector times(const Matrix& m, const Vector& v) {
    return {m[0] * v[0] + m[1] * v[1] + m[2] * v[2], m[3] * v[0] + m[4] * v[1] + m[5] * v[2],
            m[6] * v[0] + m[7] * v[1] + m[8] * v[2]};
}
Matrix times(const Matrix& a, const Matrix& b) {
    Matrix out{};
    for (int i = 0; i < 9; ++i)
        for (int k = 0; k < 3; ++k) out[i] += a[i / 3 * 3 + k] * b[k * 3 + i % 3];
    return out;
}

/// XYZ of a black body of a temperature in kelvin (B. Kim and others, "Design of Advanced Color Temperature
/// Control System for HDTV Applications", 2002), moved by the tint: by 1/3000 in CIE's u and v for each, away
/// from the line of black bodies and towards green, as raw converters count.
Vector white(double kelvin, double tint) {
    auto uv = [](double t) {
        double r = 1000 / t, x = t < 4000 ? ((-0.2661239 * r - 0.2343589) * r + 0.8776956) * r + 0.179910
                                          : ((-3.0258469 * r + 2.1070379) * r + 0.2226347) * r + 0.240390;
        double y = t < 2222   ? ((-1.1063814 * x - 1.34811020) * x + 2.18555832) * x - 0.20219683
                   : t < 4000 ? ((-0.9549476 * x - 1.37418593) * x + 2.09137015) * x - 0.16748867
                              : ((3.0817580 * x - 5.87338670) * x + 3.75112997) * x - 0.37001483;
        double scale = -2 * x + 12 * y + 3;
        return Point{4 * x / scale, 6 * y / scale};
    };
    Point p = uv(kelvin), next = uv(kelvin * 1.001);
    double du = next.x - p.x, dv = next.y - p.y, length = std::hypot(du, dv);
    // Hotter is to the lower left, green above it.
    double u = p.x + tint / 3000 * dv / length, v = p.y - tint / 3000 * du / length;
    double scale = 2 * u - 8 * v + 4, x = 3 * u / scale, y = 2 * v / scale;
    return {x / y, 1, (1 - x - y) / y};
}

/// Colours of linear sRGB to XYZ (IEC 61966-2-1), and XYZ to the cones of Bradford (K. M. Lam, 1985).
constexpr Matrix toXYZ{0.4124564, 0.3575761, 0.1804375, 0.2126729, 0.7151522,
                       0.0721750, 0.0193339, 0.1191920, 0.9503041};
constexpr Matrix fromXYZ{3.2404542, -1.5371385, -0.4985314, -0.9692660, 1.8760108,
                         0.0415560, 0.0556434,  -0.2040259, 1.0572252};
constexpr Matrix toCones{0.8951, 0.2664, -0.1614, -0.7502, 1.7135, 0.0367, 0.0389, -0.0685, 1.0296};
constexpr Matrix fromCones{0.9869929, -0.1470543, 0.1599627, 0.4323053, 0.5183603,
                           0.0492912, -0.0085287, 0.0400428, 0.9684867};

/// What was white becomes the target's white: von Kries's adaptation of the eye, in Bradford's cones. (Core
/// Image does not tell its own formula.)
Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    Numbers from = in.vector("inputNeutral", 2), to = in.vector("inputTargetNeutral", 2);
    if (from == to) return image;
    auto cones = [](const Numbers& v) {
        return times(toCones, white(std::clamp(v[0], 1667.0, 25000.0), std::clamp(v[1], -150.0, 150.0)));
    };
    Vector before = cones(from), after = cones(to);
    Matrix scale{after[0] / before[0], 0, 0, 0, after[1] / before[1], 0, 0, 0, after[2] / before[2]};
    return colorMatrix(image,
                       colorsOnly(times(fromXYZ, times(fromCones, times(scale, times(toCones, toXYZ))))));
}

const Registrar filter{
    {"CITemperatureAndTint",
     "Temperature and Tint",
     "Makes the white of one light the white of another.",
     ourOwn("von Kries's adaptation in Bradford's cones, from the light of black bodies"),
     "10.7",
     categories("ColorAdjustment Video StillImage Interlaced NonSquarePixels BuiltIn"),
     {imageInput(), vectorInput("inputNeutral", "Neutral", "Offset", {6500, 0}, Numbers{6500, 0}),
      vectorInput("inputTargetNeutral", "Target Neutral", "Offset", {6500, 0}, Numbers{6500, 0})},
     build}};

} // namespace

} // namespace engine
