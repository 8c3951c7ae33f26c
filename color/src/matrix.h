// 3x3 matrices, row by row.
#pragma once

#include <array>
#include <cmath>
#include <optional>

namespace color {

using Matrix = std::array<double, 9>;
inline constexpr Matrix identityMatrix = {1, 0, 0, 0, 1, 0, 0, 0, 1};

inline Matrix operator*(const Matrix& m, const Matrix& n) {
    Matrix out{};
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c)
            for (int k = 0; k < 3; ++k) out[r * 3 + c] += m[r * 3 + k] * n[k * 3 + c];
    return out;
}

/// Empty when the determinant vanishes or is not a number.
inline std::optional<Matrix> inverse(const Matrix& m) {
    auto cofactor = [&](int r0, int c0, int r1, int c1) {
        return m[r0 * 3 + c0] * m[r1 * 3 + c1] - m[r0 * 3 + c1] * m[r1 * 3 + c0];
    };
    Matrix adjugate = {cofactor(1, 1, 2, 2),  -cofactor(0, 1, 2, 2), cofactor(0, 1, 1, 2),
                       -cofactor(1, 0, 2, 2), cofactor(0, 0, 2, 2),  -cofactor(0, 0, 1, 2),
                       cofactor(1, 0, 2, 1),  -cofactor(0, 0, 2, 1), cofactor(0, 0, 1, 1)};
    double determinant = m[0] * adjugate[0] + m[1] * adjugate[3] + m[2] * adjugate[6];
    if (!(std::abs(determinant) > 1e-12) || !std::isfinite(determinant)) return {};
    for (double& value : adjugate) value /= determinant;
    return adjugate;
}

inline bool nearlyEqual(const Matrix& m, const Matrix& n, double tolerance) {
    for (int i = 0; i < 9; ++i)
        if (!(std::abs(m[i] - n[i]) <= tolerance)) return false;
    return true;
}

} // namespace color
