// One source, two instruction sets. A kernel is a callable holding plain loops; run() compiles it once
// for the baseline and once for AVX2 with FMA, and calls the one in use:
//
//     simd::run([=]() SIMD_INLINE {
//         SIMD_LOOP
//         for (int i = 0; i < n; ++i) out[i] = 2 * in[i];
//     });
//
// Capture by value, so that the loop's invariants stay in registers. Functions called in a loop have to be
// SIMD_INLINE too: what is not inlined keeps the baseline's instructions and stops the loop from being
// vectorised.
#pragma once

#define SIMD_INLINE __attribute__((always_inline))
/// Promises that the arrays of the loop below do not overlap, unless element for element.
#define SIMD_LOOP _Pragma("clang loop vectorize(assume_safety)")

namespace color::simd {

enum class Set { sse2, avx2 };

/// The set in use; at start the best that the processor has.
__attribute__((visibility("default"))) Set current();
/// False, and nothing changes, when the processor does not have it.
__attribute__((visibility("default"))) bool select(Set set);

template <class F>
__attribute__((target("avx2,fma"), flatten, noinline)) void runAvx2(F kernel) {
    kernel();
}
template <class F>
__attribute__((flatten, noinline)) void runSse2(F kernel) {
    kernel();
}

template <class F>
inline void run(F kernel) {
    if (current() == Set::avx2)
        runAvx2(kernel);
    else
        runSse2(kernel);
}

} // namespace color::simd
