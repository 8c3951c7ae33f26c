// Pictures in double precision, to compare what the engine computes with what it should.
#pragma once

#include <engine/engine.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>

namespace reference {

using namespace engine;

using Pixel = std::array<double, 4>;

/// Pixels of a rectangle, y upwards, premultiplied linear; transparent outside.
struct Picture {
    int x0, y0, width, height;
    std::vector<Pixel> pixels;

    Picture(int x, int y, int w, int h) : x0(x), y0(y), width(w), height(h), pixels(std::size_t(w) * h) {}
    bool has(int x, int y) const { return x >= x0 && y >= y0 && x < x0 + width && y < y0 + height; }
    Pixel& at(int x, int y) { return pixels[std::size_t(y - y0) * width + (x - x0)]; }
    Pixel get(int x, int y) const {
        return has(x, y) ? pixels[std::size_t(y - y0) * width + (x - x0)] : Pixel{};
    }
};

inline Picture filled(int x0, int y0, int w, int h, const std::function<Pixel(int, int)>& of) {
    Picture p(x0, y0, w, h);
    for (int y = y0; y < y0 + h; ++y)
        for (int x = x0; x < x0 + w; ++x) p.at(x, y) = of(x, y);
    return p;
}

inline Picture noise(int w, int h, unsigned seed, bool opaque = false) {
    std::mt19937 random(seed);
    auto next = [&] { return (random() >> 8) / double(1 << 24); };
    return filled(0, 0, w, h, [&](int, int) -> Pixel {
        double a = opaque ? 1 : next() < 0.1 ? 0 : next();
        double r = next(), g = next(), b = next();
        return {r * a, g * a, b * a, a};
    });
}

inline PixelLayout linearLayout(int w, int h) {
    return {w, h, Format::RGBAf, Alpha::premultiplied, color::ColorSpace::linearSRGB()};
}

inline Image imageOf(const Picture& p) {
    auto floats = std::make_shared<std::vector<float>>();
    for (int row = 0; row < p.height; ++row)
        for (int x = 0; x < p.width; ++x)
            for (double v : p.get(p.x0 + x, p.y0 + p.height - 1 - row)) floats->push_back(float(v));
    Image image = bitmap(linearLayout(p.width, p.height), floats->data(), 16 * p.width, floats);
    return transform(image, Affine::translation(p.x0, p.y0));
}

inline Picture rendered(const Image& image, int x0, int y0, int w, int h) {
    std::vector<float> out(4 * std::size_t(w) * h, -7.f);
    render(image, Rect::ofSize(x0, y0, w, h), {linearLayout(w, h), out.data(), 16 * std::size_t(w)},
           Rect::ofSize(0, 0, w, h));
    return filled(x0, y0, w, h, [&](int x, int y) {
        Pixel p;
        for (int c = 0; c < 4; ++c) p[c] = out[4 * (std::size_t(h - 1 - (y - y0)) * w + (x - x0)) + c];
        return p;
    });
}

/// The same in tiles of that size.
inline Picture inTiles(const Image& image, int x0, int y0, int w, int h, int size = 13) {
    setTileSize(size);
    Picture out = rendered(image, x0, y0, w, h);
    setTileSize(0);
    return out;
}

/// The nearest pixel of the picture.
inline Pixel clamped(const Picture& p, int x, int y) {
    return p.get(std::clamp(x, p.x0, p.x0 + p.width - 1), std::clamp(y, p.y0, p.y0 + p.height - 1));
}

inline double difference(const Picture& a, const Picture& b) {
    double worst = 0;
    for (std::size_t i = 0; i < a.pixels.size(); ++i)
        for (int c = 0; c < 4; ++c) {
            double d = std::abs(a.pixels[i][c] - b.pixels[i][c]);
            worst = std::isnan(d) ? 1e30 : std::max(worst, d);
        }
    return worst;
}

/// Renders the rectangle of the expected picture.
inline double error(const Image& image, const Picture& expected) {
    return difference(rendered(image, expected.x0, expected.y0, expected.width, expected.height), expected);
}

inline Image filter(const char* name, const Values& values) {
    const FilterInfo* info = findFilter(name);
    if (!info) throw std::runtime_error(std::string("no filter ") + name);
    return engine::apply(*info, values);
}

/// A formula on straight colour.
inline Picture mapped(const Picture& p, const std::function<Pixel(Pixel)>& of) {
    return filled(p.x0, p.y0, p.width, p.height, [&](int x, int y) -> Pixel {
        Pixel q = p.get(x, y);
        for (int c = 0; c < 3; ++c) q[c] = q[3] > 0 ? q[c] / q[3] : 0;
        q = of(q);
        return {q[0] * q[3], q[1] * q[3], q[2] * q[3], q[3]};
    });
}

/// Of linear light, as Core Image weighs it.
inline double luminance(const Pixel& p) { return 0.2125 * p[0] + 0.7154 * p[1] + 0.0721 * p[2]; }

constexpr double floatError = 2e-5; // some dozen roundings and polynomial approximations
constexpr double halfStep = 0.5 / 255;

// The transfer function of IEC 61966-2-1 and its inverse, odd below 0.
inline double coded(double x) {
    double m = std::abs(x);
    return std::copysign(m <= 0.0031308 ? 12.92 * m : 1.055 * std::pow(m, 1 / 2.4) - 0.055, x);
}
inline double linear(double c) {
    double m = std::abs(c);
    return std::copysign(m <= 0.04045 ? m / 12.92 : std::pow((m + 0.055) / 1.055, 2.4), c);
}

inline Picture bothWays(const Picture& p, int reach, const std::function<double(int)>& weight) {
    std::vector<double> weights;
    for (int k = -reach; k <= reach; ++k) weights.push_back(weight(k));
    auto pass = [&](const Picture& in, int dx, int dy) {
        Picture out(in.x0 - reach * dx, in.y0 - reach * dy, in.width + 2 * reach * dx,
                    in.height + 2 * reach * dy);
        for (int y = in.y0; y < in.y0 + in.height; ++y)
            for (int x = in.x0; x < in.x0 + in.width; ++x) {
                Pixel from = in.get(x, y);
                for (int k = -reach; k <= reach; ++k)
                    for (int c = 0; c < 4; ++c)
                        out.at(x + k * dx, y + k * dy)[c] += weights[k + reach] * from[c];
            }
        return out;
    };
    return pass(pass(p, 1, 0), 0, 1);
}

inline Picture part(const Picture& p, int x, int y, int w, int h) {
    return filled(x, y, w, h, [&](int i, int j) { return p.get(i, j); });
}

inline Picture trueGaussian(const Picture& p, double sigma) {
    int reach = int(std::ceil(5 * sigma));
    double sum = 0;
    for (int k = -reach; k <= reach; ++k) sum += std::exp(-0.5 * k * k / (sigma * sigma));
    return bothWays(p, reach, [=](int k) { return std::exp(-0.5 * k * k / (sigma * sigma)) / sum; });
}

inline Pixel bilinear(const Picture& p, double x, double y) {
    int i = int(std::floor(x - 0.5)), j = int(std::floor(y - 0.5));
    double u = x - 0.5 - i, v = y - 0.5 - j;
    Pixel out;
    for (int c = 0; c < 4; ++c)
        out[c] = (1 - v) * ((1 - u) * p.get(i, j)[c] + u * p.get(i + 1, j)[c]) +
                 v * ((1 - u) * p.get(i, j + 1)[c] + u * p.get(i + 1, j + 1)[c]);
    return out;
}

/// What a sampler reads at a place: the pixel it lies in, or a mix of the four around it, with nothing or the
/// nearest pixel of the edge beyond.
inline Pixel readAt(const Picture& p, double x, double y, Wrap wrap, Interpolation interpolation) {
    Picture around = filled(int(std::floor(x)) - 1, int(std::floor(y)) - 1, 3, 3, [&](int i, int j) {
        return wrap == Wrap::black ? p.get(i, j) : clamped(p, i, j);
    });
    if (interpolation == Interpolation::linear) return bilinear(around, x, y);
    return around.get(int(std::floor(x)), int(std::floor(y)));
}

/// Turned around the origin, in radians.
inline Point turned(Point p, double angle) {
    return {p.x * std::cos(angle) - p.y * std::sin(angle), p.x * std::sin(angle) + p.y * std::cos(angle)};
}

constexpr double placeError = 5e-5; // places are kept in single precision

} // namespace reference
