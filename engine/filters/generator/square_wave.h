// Waves of two colours, as CICheckerboardGenerator and CIStripesGenerator draw them.
#pragma once

#include "two_colors.h"

#include <cmath>

namespace engine::generators {

/// Two colours in turn, each as wide as the other. A pixel's place in the wave goes from 0 to 2; the edges
/// lie at 0.5 and 1.5, and the wave is -1 between them and 1 beyond. With less sharpness the edges become
/// ramps, which at 0 are as wide as a colour.
struct SquareWave {
    double centre, width;
    float sharpen, step;

    /// The second colour begins at `centre`.
    SquareWave(const Inputs& in, double centre)
        : centre(centre), width(std::clamp(std::abs(in.number("inputWidth")), 1e-3, 1e9)),
          // An edge is at least a pixel wide, which keeps it smooth.
          sharpen(static_cast<float>(
              2 / std::max(1 - in.number("inputSharpness", 0, 1), std::min(1.0, 1 / width)))),
          step(static_cast<float>(1 / width)) {}

    /// Along a row, see anchorOf().
    struct Places {
        float first, step;
        int offset;
        SIMD_INLINE float at(int i) const { return first + static_cast<float>(i + offset) * step; }
    };
    Places places(int x) const { return {place(anchorOf(x)), step, x - anchorOf(x)}; }
    float place(int pixel) const {
        double v = (pixel + 0.5 - centre) / width + 0.5;
        return static_cast<float>(v - 2 * std::floor(v / 2));
    }
    SIMD_INLINE float at(float place) const {
        float wrapped = place - 2 * simd::floor(place * 0.5f);
        return simd::clamp((simd::abs(wrapped - 1) - 0.5f) * sharpen, -1, 1);
    }
};

inline std::vector<InputInfo> waveInputs() {
    return {vectorInput("inputCenter", "Center", "Position", {150, 150}),
            colorInput("inputColor0", "Color 1", "", white), colorInput("inputColor1", "Color 2", "", black),
            numberInput("inputWidth", "Width", "Distance", {.value = 80, .sliderMin = 0, .sliderMax = 800}),
            numberInput("inputSharpness", "Sharpness", "Scalar",
                        {.value = 1, .min = 0, .max = 1, .sliderMin = 0, .sliderMax = 1})};
}

} // namespace engine::generators
