// The kinds of conversion, among which space.cpp chooses.
#pragma once

#include "matrix.h"

#include <color/color.h>
#include <lcms2.h>

namespace color {

/// A transfer curve, coded 0..1 to linear light and back.
struct Curve {
    enum class Kind { linear, srgb, gamma, table };
    Kind kind = Kind::linear;
    float gamma = 1;
    /// For `table`: linear light at evenly spaced coded values, and coded values at evenly spaced square
    /// roots of linear light (the root spreads out the steep part near black).
    std::vector<float> forward, backward;

    /// The simplest kind that stays within 1/1024 of `tone`, measured in coded values.
    static Curve of(const cmsToneCurve* tone);
    void decode(const float* in, float* out, std::size_t n) const;
    void encode(const float* in, float* out, std::size_t n) const;
    /// encode(), clipped to 0..1.
    void encodeClipped(const float* in, float* out, std::size_t n) const;
    bool operator==(const Curve&) const = default;
};

/// RGB given by three curves and `toLinear`, the matrix from the space's own linear light to the hub's.
/// Throws std::invalid_argument when the matrix cannot be inverted.
ConverterPtr makeMatrixConverter(std::array<Curve, 3> curves, const Matrix& toLinear);
ConverterPtr makeGrayConverter(Curve curve);
ConverterPtr makeDeviceCMYKConverter();
/// Through a colour management transform. Null when the profile cannot be used in both directions.
ConverterPtr makeProfileConverter(cmsHPROFILE profile, Model model);

} // namespace color
