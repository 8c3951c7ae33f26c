// The vocabulary that filters' formulas are written in.
//
// A filter that computes each pixel on its own is its formula and little else:
//
//     return eachStraightPixel(in.image("inputImage"), "darker", [=](Pixel p) SIMD_INLINE {
//         return p * gain;
//     });
//
// A formula runs inside a vectorised loop, so it is SIMD_INLINE, captures by value, and calls only what is
// SIMD_INLINE too: the functions here and those of color/vecmath.h. In the release build a loop that cannot
// be vectorised is an error. Where a formula needs colours of the working space, give a function instead that
// makes the formula from the RenderContext; it is called once for each tile:
//
//     [=](const RenderContext& context) {
//         return [tint = pixel(context.color(color))](Pixel p) SIMD_INLINE {
//             return eachColor(p, tint, [](float v, float t) SIMD_INLINE { return v * t; });
//         };
//     }
#pragma once

#include "nodes.h"

#include <color/vecmath.h>

#include <numbers>
#include <utility>

namespace engine {

namespace simd = color::simd;
using std::numbers::pi;

// -------------------------------------------------------------------------------------------- pixels

/// One pixel: linear colours of the working space and alpha. Whether the colours are premultiplied depends on
/// the step.
struct Pixel {
    float r, g, b, a;
};

inline Pixel pixel(const Rgba& c) { return {c[0], c[1], c[2], c[3]}; }
SIMD_INLINE inline Pixel gray(float v, float alpha) { return {v, v, v, alpha}; }

/// The colours times a factor; alpha stays.
SIMD_INLINE inline Pixel operator*(Pixel p, float factor) {
    return {p.r * factor, p.g * factor, p.b * factor, p.a};
}
/// f of each colour; alpha stays.
template <class F>
SIMD_INLINE inline Pixel eachColor(Pixel p, F f) {
    return {f(p.r), f(p.g), f(p.b), p.a};
}
/// f of each colour of the one and the other; alpha is the first one's.
template <class F>
SIMD_INLINE inline Pixel eachColor(Pixel p, Pixel q, F f) {
    return {f(p.r, q.r), f(p.g, q.g), f(p.b, q.b), p.a};
}
/// All four components from p at 0 to q at 1.
SIMD_INLINE inline Pixel mix(Pixel p, Pixel q, float t) {
    return {simd::mix(p.r, q.r, t), simd::mix(p.g, q.g, t), simd::mix(p.b, q.b, t), simd::mix(p.a, q.a, t)};
}
SIMD_INLINE inline float largest(Pixel p) { return simd::max(p.r, simd::max(p.g, p.b)); }
SIMD_INLINE inline float smallest(Pixel p) { return simd::min(p.r, simd::min(p.g, p.b)); }

/// Core Image's weights of linear light. They fit its pictures of screens and gradients exactly, where those
/// of Rec. 709 (0.2126, 0.7152, 0.0722) show rounding.
constexpr std::array<double, 3> luminanceWeights{0.2125, 0.7154, 0.0721};
SIMD_INLINE inline float luminance(float r, float g, float b) {
    return static_cast<float>(luminanceWeights[0]) * r + static_cast<float>(luminanceWeights[1]) * g +
           static_cast<float>(luminanceWeights[2]) * b;
}
SIMD_INLINE inline float luminance(Pixel p) { return luminance(p.r, p.g, p.b); }

/// The factor that takes alpha out of a premultiplied colour: 1 / alpha, and 0 where alpha is too small to be
/// seen, or is only rounding.
SIMD_INLINE inline float unpremultiply(float alpha) { return alpha > 1e-6f ? 1 / alpha : 0; }
SIMD_INLINE inline Pixel straight(Pixel p) { return p * unpremultiply(p.a); }
SIMD_INLINE inline Pixel premultiplied(Pixel p) { return {p.a * p.r, p.a * p.g, p.a * p.b, p.a}; }

/// The colours in sRGB's coded form, in which even steps look even; they have to be straight.
SIMD_INLINE inline Pixel coded(Pixel p) {
    return {simd::linearToSrgb(p.r), simd::linearToSrgb(p.g), simd::linearToSrgb(p.b), p.a};
}
/// Back from there.
SIMD_INLINE inline Pixel decoded(Pixel p) {
    return {simd::srgbToLinear(p.r), simd::srgbToLinear(p.g), simd::srgbToLinear(p.b), p.a};
}

/// 3t^2 - 2t^3 for 0..1, and the nearer end beyond.
SIMD_INLINE inline float smoothstep(float t) {
    t = simd::unit(t);
    return t * t * (3 - 2 * t);
}

/// The vector of an input as floats, padded with 0.
template <std::size_t N>
std::array<float, N> floats(const Inputs& in, std::string_view key) {
    std::array<float, N> out;
    Numbers numbers = in.vector(key, N);
    std::transform(numbers.begin(), numbers.end(), out.begin(),
                   [](double v) { return static_cast<float>(v); });
    return out;
}

// -------------------------------------------------------------------------------------------- places

// Where pixels lie, as a formula sees it. A place has row(x, y) for the row whose first pixel is (x, y), and
// the row has at(i), the centre of its pixel i, as long as that lies in the same block. Large numbers
// are whole or in double precision, so that pixels far from the origin are as exact as those near it.

struct Position {
    float x, y;
};

/// Seen from a point.
struct From {
    Point origin;

    struct Row {
        int whole;
        float rest, y;
        SIMD_INLINE Position at(int i) const { return {static_cast<float>(whole + i) + rest, y}; }
    };
    Row row(int x, int y) const {
        int start = wholePart(origin.x);
        return {x - start, static_cast<float>(start + 0.5 - origin.x),
                static_cast<float>(y + 0.5 - origin.y)};
    }
};

/// Seen from a point, in units of `1 / scale` pixels.
struct ScaledFrom {
    Point origin;
    double scale;

    struct Row {
        From::Row row;
        float scale;
        SIMD_INLINE Position at(int i) const {
            Position p = row.at(i);
            return {p.x * scale, p.y};
        }
    };
    Row row(int x, int y) const {
        From::Row row = From{origin}.row(x, y);
        row.y = static_cast<float>((y + 0.5 - origin.y) * scale);
        return {row, static_cast<float>(scale)};
    }
};

/// Rows that run in any direction: both coordinates change from pixel to pixel.
struct SlantedRow {
    float x, stepX, y, stepY;
    int offset;
    SIMD_INLINE Position at(int i) const {
        float k = static_cast<float>(i + offset);
        return {x + k * stepX, y + k * stepY};
    }
};

/// Moved by a transform.
struct Through {
    Affine matrix;

    SlantedRow row(int x, int y) const {
        int anchor = anchorOf(x);
        Point first = matrix.apply(Point{anchor + 0.5, y + 0.5});
        return {static_cast<float>(first.x), static_cast<float>(matrix.a), static_cast<float>(first.y),
                static_cast<float>(matrix.b), x - anchor};
    }
};

/// How far along a direction, seen from a point and divided by `unit`: a number instead of a position.
struct Along {
    Point origin, direction;
    double unit;

    struct Row {
        float first, step;
        int offset;
        SIMD_INLINE float at(int i) const { return first + static_cast<float>(i + offset) * step; }
    };
    Row row(int x, int y) const {
        int anchor = anchorOf(x);
        double way = (anchor + 0.5 - origin.x) * direction.x + (y + 0.5 - origin.y) * direction.y;
        return {static_cast<float>(way / unit), static_cast<float>(direction.x / unit), x - anchor};
    }
};

// ---------------------------------------------------------------------------------------------- rows

/// body(0) .. body(n - 1), vectorised: pixels that the body reads and writes must not overlap, unless they
/// are the same pixel.
template <class Body>
void eachIndex(int n, Body body) {
    simd::run([=]() SIMD_INLINE {
        SIMD_LOOP
        for (int i = 0; i < n; ++i) body(i);
    });
}

SIMD_INLINE inline Pixel load(const Span& s, int i) {
    return {s.plane[0][i], s.plane[1][i], s.plane[2][i], s.plane[3][i]};
}
/// Alpha goes first, so that the compiler can drop the store where a formula leaves alpha alone.
SIMD_INLINE inline void store(const Span& s, int i, Pixel p) {
    s.plane[3][i] = p.a;
    s.plane[0][i] = p.r;
    s.plane[1][i] = p.g;
    s.plane[2][i] = p.b;
}

/// out = formula(out, more ...), all premultiplied.
template <class Formula, std::same_as<Span>... More>
void eachPixel(int n, Formula formula, const Span& out, const More&... more) {
    eachIndex(n, [=](int i) SIMD_INLINE { store(out, i, formula(load(out, i), load(more, i)...)); });
}

/// v = formula(v) for each straight colour of a row, one plane after the other; alpha stays.
template <class Formula>
void eachStraightColor(int n, Formula formula, const Span& s) {
    for (int c = 0; c < 3; ++c)
        eachIndex(n, [=, v = s.plane[c], alpha = s.plane[3]](int i)
                         SIMD_INLINE { v[i] = alpha[i] * formula(v[i] * unpremultiply(alpha[i])); });
}

/// A row of out = formula(the pixel's place).
template <class Row, class Formula>
void eachPlace(int n, Formula formula, const Span& out, const Row& row) {
    eachIndex(n, [=](int i) SIMD_INLINE { store(out, i, formula(row.at(i))); });
}

/// A row of a warp: formula(the pixel's place) is how far away from it to read.
template <class Row, class Formula>
void eachDisplacement(int n, Formula formula, float* dx, float* dy, const Row& row) {
    eachIndex(n, [=](int i) SIMD_INLINE {
        Position away = formula(row.at(i));
        dx[i] = away.x;
        dy[i] = away.y;
    });
}

// ---------------------------------------------------------------------------- steps, one for a filter

/// The formula itself, or the one that the given function makes for this context.
template <class Formula>
auto formulaIn(const RenderContext& context, const Formula& formula) {
    if constexpr (std::is_invocable_v<const Formula&, const RenderContext&>)
        return formula(context);
    else
        return formula;
}

/// formula(pixel), premultiplied.
template <class Formula>
Image eachPixel(const Image& image, std::string name, Formula formula) {
    return pointStep(image, std::move(name), [=](const RenderContext& context) -> SpanFunction {
        return [f = formulaIn(context, formula)](const Span& s, int, int, int n) { eachPixel(n, f, s); };
    });
}

/// formula(pixel, position), premultiplied; the place says where the pixel is.
template <class Place, class Formula>
Image eachPixel(const Image& image, std::string name, const Place& place, Formula formula) {
    return pointStep(image, std::move(name), [=](const RenderContext& context) -> SpanFunction {
        return [=, f = formulaIn(context, formula)](const Span& s, int x, int y, int n) {
            eachIndex(n, [=, row = place.row(x, y)](int i)
                             SIMD_INLINE { store(s, i, f(load(s, i), row.at(i))); });
        };
    });
}

/// The components of each pixel times formula(position); the place says where it is.
template <class Place, class Formula>
Image weighted(const Image& image, std::string name, const Place& place, Formula formula) {
    return eachPixel(image, std::move(name), place, [=](Pixel p, auto position) SIMD_INLINE {
        float weight = formula(position);
        return Pixel{p.r * weight, p.g * weight, p.b * weight, p.a * weight};
    });
}

/// formula(pixel) on straight colours; the result is premultiplied by its own alpha.
template <class Formula>
Image eachStraightPixel(const Image& image, std::string name, Formula formula) {
    return pointStep(image, std::move(name), [=](const RenderContext& context) -> SpanFunction {
        return [f = formulaIn(context, formula)](const Span& s, int, int, int n) {
            eachPixel(
                n, [=](Pixel p) SIMD_INLINE { return premultiplied(f(straight(p))); }, s);
        };
    });
}

/// formula(colour) on each straight colour by itself; alpha stays.
template <class Formula>
Image eachStraightColor(const Image& image, std::string name, Formula formula) {
    return pointStep(image, std::move(name), [=](const RenderContext& context) -> SpanFunction {
        return
            [f = formulaIn(context, formula)](const Span& s, int, int, int n) { eachStraightColor(n, f, s); };
    });
}

/// formula(pixel of the first image, pixel of the second ...), premultiplied; transparent outside of
/// `extent`. For at most maxCombined images, of which a null one is clear.
template <std::size_t N, class Formula>
Image eachPixel(std::string name, const Rect& extent, const Image (&images)[N], Formula formula) {
    static_assert(N <= maxCombined);
    return combine(std::move(name), extent, {images, images + N}, [=](const Span* s, int n) {
        [&]<std::size_t... k>(std::index_sequence<k...>) { eachPixel(n, formula, s[k]...); }
        (std::make_index_sequence<N>());
    });
}

/// A generator: formula(position) is the premultiplied pixel; the place says where it is.
template <class Place, class Formula>
Image eachPlace(std::string name, const Rect& extent, const Place& place, Formula formula) {
    return generator(std::move(name), extent, [=](const RenderContext& context) -> SpanFunction {
        return [=, f = formulaIn(context, formula)](const Span& out, int x, int y, int n) {
            eachPlace(n, f, out, place.row(x, y));
        };
    });
}

} // namespace engine
