// Random numbers that belong to a place.
#pragma once

#include <color/simd.h>

#include <cstdint>

namespace engine::generators {

/// 0..1, always the same for the same whole numbers (C. Wellons, "Prospecting for Hash Functions", 2018).
SIMD_INLINE inline float noiseAt(std::uint32_t x, std::uint32_t y) {
    std::uint32_t h = x * 0x9e3779b1u + y * 0x85ebca77u;
    h = (h ^ (h >> 16)) * 0x7feb352du;
    h = (h ^ (h >> 15)) * 0x846ca68bu;
    h ^= h >> 16;
    return static_cast<float>(static_cast<int>(h >> 8)) * (1.f / 16777215.f);
}

} // namespace engine::generators
