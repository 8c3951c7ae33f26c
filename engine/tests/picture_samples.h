// Pixels of pictures that Core Image rendered, with those of the pictures that it made them from.
#pragma once

#include "reference.h"

namespace reference {

/// Straight sRGB bytes; all 0 where a picture has no pixel.
using Bytes4 = std::array<int, 4>;

struct Sample {
    int x, y;
    Bytes4 image, target, result;
};

/// One colour everywhere; clear for all 0.
inline Image constantOf(const Bytes4& c) {
    return constant({c[0] / 255.0, c[1] / 255.0, c[2] / 255.0, c[3] / 255.0});
}

/// Expects of one pixel of an image what Core Image made of it, within `tolerance` steps of premultiplied
/// bytes.
inline void expectPixel(const Image& image, int x, int y, const Bytes4& result, double tolerance = 1.5) {
    std::array<std::uint8_t, 4> got;
    render(image, Rect::ofSize(x, y, 1, 1), {PixelLayout{1, 1}, got.data(), 4}, Rect::ofSize(0, 0, 1, 1));
    for (int c = 0; c < 4; ++c)
        EXPECT_NEAR(got[c], c < 3 ? result[c] * result[3] / 255.0 : result[c], tolerance)
            << x << ' ' << y << ' ' << c;
}

/// A transition whose pixels depend on no other place, with each sample's own pictures.
inline void expectSamples(const char* name, Values values, std::initializer_list<Sample> samples,
                          double tolerance = 1.5) {
    for (const Sample& sample : samples) {
        values["inputImage"] = constantOf(sample.image);
        values["inputTargetImage"] = constantOf(sample.target);
        expectPixel(filter(name, values), sample.x, sample.y, sample.result, tolerance);
    }
}

/// Expects that an image is the same when it is rendered in small tiles.
inline void expectSameInTiles(const Image& image, int x, int y, int w, int h, double tolerance = 0) {
    EXPECT_LE(difference(inTiles(image, x, y, w, h), rendered(image, x, y, w, h)), tolerance);
}

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
