// The noise that Core Image's random picture, its rays and its flashes are made of.
#pragma once

#include <color/vecmath.h>

#include <cstddef>

namespace engine {

/// One component of the noise: 256 x 256 numbers 0..1, repeated for ever from the origin.
struct NoisePlane {
    static constexpr int size = 256;
    /// Rows from the lowest upwards.
    const float* values;

    /// The number of pixel (x, y).
    SIMD_INLINE float pixel(int x, int y) const { return values[(y & (size - 1)) * size + (x & (size - 1))]; }
    /// A bilinear reading; the centre of pixel (0, 0) is (0.5, 0.5).
    SIMD_INLINE float at(float x, float y) const {
        using namespace color;
        int column = simd::floorInt(x - 0.5f), row = simd::floorInt(y - 0.5f);
        float u = x - 0.5f - static_cast<float>(column), v = y - 0.5f - static_cast<float>(row);
        float low = simd::mix(pixel(column, row), pixel(column + 1, row), u);
        float high = simd::mix(pixel(column, row + 1), pixel(column + 1, row + 1), u);
        return simd::mix(low, high, v);
    }
};

/// Red, green, blue and alpha are components 0 to 3. Premultiplied as they are: colours may exceed alpha.
NoisePlane noisePlane(int component);

} // namespace engine
