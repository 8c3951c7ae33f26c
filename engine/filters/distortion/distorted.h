// What the tests of distortions compare with: where pixels come from, in double precision.
#pragma once

#include "reference.h"

namespace reference {

constexpr double distortionError = 1e-4; // a place's rounding times the steepest edge

/// Where the distortions of `distorted` have their centre.
const Point centre{31.2, 27.7};

/// The picture by where each pixel comes from, both places from the centre.
inline Picture comesFrom(const Picture& p, const std::function<Point(Point)>& place) {
    return filled(-40, -40, 140, 140, [&](int x, int y) {
        Point from = place({x + 0.5 - centre.x, y + 0.5 - centre.y});
        return bilinear(p, centre.x + from.x, centre.y + from.y);
    });
}

inline Image distorted(const char* name, const Picture& p, Values values) {
    values["inputImage"] = imageOf(p);
    if (findFilter(name)->findInput("inputCenter")) values["inputCenter"] = Numbers{centre.x, centre.y};
    return filter(name, values);
}

/// How far rendering in small tiles is from rendering at once.
inline double tileError(const Image& image) {
    return difference(rendered(image, -40, -40, 140, 140), inTiles(image, -40, -40, 140, 140, 16));
}

/// 3t^2 - 2t^3 for 0..1.
inline double smoothstep(double t) {
    t = std::clamp(t, 0.0, 1.0);
    return t * t * (3 - 2 * t);
}

/// The alpha that an opaque picture of this size has at a place after a filter.
inline double alphaAt(const char* name, int width, int height, Values values, double x, double y) {
    values["inputImage"] = crop(constant({1, 1, 1, 1}), {0, 0, double(width), double(height)});
    int i = int(std::floor(x)), j = int(std::floor(y));
    return rendered(filter(name, values), i, j, 1, 1).get(i, j)[3];
}

/// How far light is moved by a half circle of glass with radius 1.
inline double refracted(double q, double refraction) {
    double in = std::asin(std::abs(q)), out = std::asin(std::min(std::abs(q) / refraction, 1.0));
    return std::copysign(std::cos(in) * std::tan(in - out), q);
}

} // namespace reference
