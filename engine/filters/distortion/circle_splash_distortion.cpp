// CICircleSplashDistortion: the rim of a circle drawn outwards without end.
#include "filter.h"
#include "warps.h"

namespace engine {

namespace {

/// Beyond the circle, each pixel shows what lies on the rim in its direction.
Image build(const Inputs& in) {
    Point centre = in.point("inputCenter");
    double radius = in.number("inputRadius", 0, 1e6);
    Rect box = squareAround(centre, radius);
    Reach reach{
        [=](const Rect& source) { return source.intersect(box).isEmpty() ? Rect{} : Rect::infinite(); },
        [=](const Rect&) { return box; }};
    return warp(in.image("inputImage"), "splash", reach, From{centre},
                [rim = static_cast<float>(radius)](Position p) SIMD_INLINE {
                    float nearer = simd::max(1 - rim / simd::sqrt(p.x * p.x + p.y * p.y), 0);
                    return Position{-nearer * p.x, -nearer * p.y};
                });
}

const Registrar filter{{"CICircleSplashDistortion",
                        "Circle Splash Distortion",
                        "Draws the rim of a circle outwards without end.",
                        fitted("the rim drawn outwards", 0.15),
                        "10.4",
                        categories("DistortionEffect Video StillImage BuiltIn"),
                        {imageInput(), vectorInput("inputCenter", "Center", "Position", {150, 150}),
                         numberInput("inputRadius", "Radius", "Distance",
                                     {.value = 150, .min = 0, .sliderMin = 0, .sliderMax = 1000})},
                        build}};

} // namespace

} // namespace engine
