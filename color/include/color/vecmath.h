// Elementary functions for kernels: branch-free float code that the compiler vectorises, unlike calls into
// the C library. None of them traps or loops on NaN or infinity.
#pragma once

#include <color/simd.h>

#include <bit>
#include <cmath>
#include <cstdint>

namespace color::simd {

/// Comparisons with NaN are false, so for a NaN these three give their last argument (clamp: low).
SIMD_INLINE inline float max(float x, float y) { return x > y ? x : y; }
SIMD_INLINE inline float min(float x, float y) { return x < y ? x : y; }
SIMD_INLINE inline float clamp(float x, float low, float high) { return min(max(x, low), high); }
SIMD_INLINE inline float unit(float x) { return clamp(x, 0, 1); }
SIMD_INLINE inline float mix(float x, float y, float t) { return x + t * (y - x); }
SIMD_INLINE inline float abs(float x) {
    return std::bit_cast<float>(std::bit_cast<std::uint32_t>(x) & 0x7fffffffu);
}
SIMD_INLINE inline float copySign(float x, float sign) {
    return std::bit_cast<float>((std::bit_cast<std::uint32_t>(x) & 0x7fffffffu) |
                                (std::bit_cast<std::uint32_t>(sign) & 0x80000000u));
}
SIMD_INLINE inline float sqrt(float x) { return __builtin_sqrtf(max(x, 0)); }

/// Largest whole number not above x, for |x| < 2^30; beyond that x is limited to it.
SIMD_INLINE inline int floorInt(float x) {
    float limited = clamp(x, -1073741824.f, 1073741824.f);
    int i = static_cast<int>(limited);
    return i - (static_cast<float>(i) > limited);
}
/// The nearest whole number, for |x| < 2^51: what adding and subtracting 3 * 2^51 leaves.
SIMD_INLINE inline double nearest(double x) { return (x + 6755399441055744.0) - 6755399441055744.0; }
SIMD_INLINE inline float floor(float x) { return static_cast<float>(floorInt(x)); }

/// log2 of a positive normal number to 1e-7 relative, by the series of artanh.
SIMD_INLINE inline float log2(float x) {
    std::uint32_t bits = std::bit_cast<std::uint32_t>(x);
    // Mantissa in [sqrt(1/2), sqrt(2)), so that the series' argument stays below 0.172.
    std::uint32_t shifted = bits - 0x3f3504f3u;
    float exponent = static_cast<float>(static_cast<std::int32_t>(shifted) >> 23);
    float m = std::bit_cast<float>((shifted & 0x007fffffu) + 0x3f3504f3u);
    float s = (m - 1) / (m + 1), q = s * s;
    float series = 1 + q * (0.33333333f + q * (0.2f + q * (0.14285714f + q * 0.11111111f)));
    return exponent + 2.88539008f * s * series;
}

/// 2^x; underflows to about 1e-38 and saturates at about 1e38.
SIMD_INLINE inline float exp2(float x) {
    x = clamp(x, -126.f, 126.f);
    int whole = floorInt(x + 0.5f);
    float f = (x - static_cast<float>(whole)) * 0.69314718f;
    float p = 1 + f * (1 + f * (0.5f + f * (0.16666667f +
                                            f * (0.041666667f + f * (0.0083333333f + f * 0.0013888889f)))));
    return p * std::bit_cast<float>(static_cast<std::uint32_t>(whole + 127) << 23);
}
SIMD_INLINE inline float exp(float x) { return exp2(x * 1.44269504f); }

/// x^p for x > 0, and 0 for x <= 0.
SIMD_INLINE inline float pow(float x, float p) {
    float y = exp2(p * log2(max(x, 1.2e-38f)));
    return x > 0 ? y : 0;
}

/// The sine by a polynomial of degree 11 after reduction to a quarter turn; absolute error below 1e-6 for |x|
/// < 1000.
SIMD_INLINE inline float sin(float x) {
    int half = floorInt(x * 0.31830989f + 0.5f);
    float n = static_cast<float>(half);
    // pi in two parts, so that the difference keeps its digits.
    float r = (x - n * 3.140625f) - n * 9.67653589793e-4f;
    float q = r * r;
    float s = r + r * q *
                      (-0.16666667f +
                       q * (0.0083333310f + q * (-1.9840874e-4f + q * (2.7525562e-6f - q * 2.3889859e-8f))));
    return half & 1 ? -s : s;
}
SIMD_INLINE inline float cos(float x) { return sin(x + 1.57079633f); }

/// The transfer functions of IEC 61966-2-1, continued below 0 as odd functions.
SIMD_INLINE inline float srgbToLinear(float c) {
    float m = abs(c);
    float curve = pow((m + 0.055f) * (1 / 1.055f), 2.4f);
    return copySign(m <= 0.04045f ? m * (1 / 12.92f) : curve, c);
}
SIMD_INLINE inline float linearToSrgb(float x) {
    float m = abs(x);
    float curve = 1.055f * pow(m, 1 / 2.4f) - 0.055f;
    return copySign(m <= 0.0031308f ? m * 12.92f : curve, x);
}
/// The same for 0..1 with two square roots instead of a power; x is clipped. With t = x^(1/4), x^(1/2.4) is
/// t^(5/3), here as the polynomial with the least maximal error for t in [0.2365, 1], which is 7e-6.
SIMD_INLINE inline float linearToSrgbUnit(float x) {
    x = unit(x);
    float t = __builtin_sqrtf(__builtin_sqrtf(x));
    float curve =
        -0.0613381369f +
        t * (0.162006789f + t * (1.25547332f + t * (-0.577598488f + t * (0.289625925f - t * 0.0681759849f))));
    return x <= 0.0031308f ? x * 12.92f : curve;
}

} // namespace color::simd
