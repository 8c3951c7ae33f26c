// What tests of kernels share: short ways from a text to numbers and pictures.
#pragma once

#include "reference.h"

#include <engine/kernels.h>

namespace kernel_texts {

using namespace reference;
using namespace engine::kernels;

/// The first kernel of a text.
inline KernelPtr kernel(const std::string& text) { return compile(text).front(); }

/// What is wrong with a text; empty when nothing is.
inline std::string mistakeIn(const std::string& text) {
    try {
        compile(text);
    } catch (const Mistake& mistake) {
        return mistake.what();
    }
    return {};
}

/// The pixel at (x, y) of an image without bounds.
inline Pixel pixelAt(const Image& image, int x = 0, int y = 0) {
    return rendered(image, x, y, 1, 1).get(x, y);
}

/// What a kernel without arguments computes in red, green and blue.
inline std::array<double, 3> result(const std::string& text, int x = 0, int y = 0) {
    Pixel p = pixelAt(engine::kernels::apply(kernel(text), {}, Rect::infinite()), x, y);
    return {p[0], p[1], p[2]};
}

/// The value of an expression, as a float.
inline double value(const std::string& expression, const std::string& before = "") {
    return result(before + "\nkernel vec4 k() { float v = " + expression +
                  "; return vec4(v, v, v, 1.0); }")[0];
}

/// The same with the expression's arguments unknown until a pixel is computed: X is 0.5 more than the pixel's
/// x.
inline double valueAt(const std::string& expression, int x, int y = 0) {
    return result("kernel vec4 k() { float X = destCoord().x; float Y = destCoord().y; float v = " +
                      expression + "; return vec4(v, v, v, 1.0); }",
                  x, y)[0];
}

inline Sampler samplerOf(const Picture& p, Wrap wrap = Wrap::black,
                         Interpolation how = Interpolation::linear) {
    return {imageOf(p), {}, wrap, how};
}

} // namespace kernel_texts
