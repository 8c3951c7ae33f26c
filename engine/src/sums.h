// Weighted sums of rows, for steps that add up pixels side by side or above each other.
#pragma once

#include <color/simd.h>

namespace engine {

/// out[i] += the sum over k of weights[k] * rows[k][i]. Four rows at a time: more would need more pointers
/// than there are registers.
inline void addRows(const float* const* rows, const float* weights, int count, float* out, int n) {
    for (; count >= 4; count -= 4, rows += 4, weights += 4)
        color::simd::run([=, a = rows[0], b = rows[1], c = rows[2], d = rows[3], p = weights[0],
                          q = weights[1], r = weights[2], s = weights[3]]() SIMD_INLINE {
            SIMD_LOOP
            for (int i = 0; i < n; ++i) out[i] += (p * a[i] + q * b[i]) + (r * c[i] + s * d[i]);
        });
    for (; count >= 2; count -= 2, rows += 2, weights += 2)
        color::simd::run([=, a = rows[0], b = rows[1], p = weights[0], q = weights[1]]() SIMD_INLINE {
            SIMD_LOOP
            for (int i = 0; i < n; ++i) out[i] += p * a[i] + q * b[i];
        });
    if (count == 1)
        color::simd::run([=, a = rows[0], p = weights[0]]() SIMD_INLINE {
            SIMD_LOOP
            for (int i = 0; i < n; ++i) out[i] += p * a[i];
        });
}

} // namespace engine
