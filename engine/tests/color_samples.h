// Pixels of pictures that Core Image rendered, for filters that need no more of a picture than the pixel
// itself.
#pragma once

#include "reference.h"

namespace reference {

/// Where a pixel lies, and its colour in the input and the output: opaque sRGB bytes.
struct ColorSample {
    int x, y;
    std::array<int, 3> in, out;
};

/// Expects each sample's output within a step, from a picture in the sample's colour that is as large as Core
/// Image's, 638 x 475.
inline void expectColors(const std::vector<ColorSample>& samples,
                         const std::function<Image(const Image&)>& filtered) {
    for (const ColorSample& s : samples) {
        Image plain = crop(constant({s.in[0] / 255., s.in[1] / 255., s.in[2] / 255., 1}), {0, 0, 638, 475});
        Pixel out = rendered(filtered(plain), s.x, s.y, 1, 1).at(s.x, s.y);
        for (int c = 0; c < 3; ++c)
            EXPECT_NEAR(255 * coded(std::clamp(out[c], 0.0, 1.0)), s.out[c], 1)
                << s.x << ' ' << s.y << ' ' << c;
    }
}

} // namespace reference
