// Which instruction set is in use.
#include <color/simd.h>

#include <atomic>

namespace color::simd {

static bool hasAvx2() { return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma"); }

static std::atomic<Set>& active() {
    static std::atomic<Set> set = hasAvx2() ? Set::avx2 : Set::sse2;
    return set;
}

Set current() { return active().load(std::memory_order_relaxed); }

bool select(Set set) {
    if (set == Set::avx2 && !hasAvx2()) return false;
    active() = set;
    return true;
}

} // namespace color::simd
