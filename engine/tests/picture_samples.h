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

} // namespace reference
