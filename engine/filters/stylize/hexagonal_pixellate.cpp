// CIHexagonalPixellate: hexagons of one colour each.
#include "cells.h"

namespace engine {

namespace {

/// The way to the middle of the nearest hexagon of a row; every second row is shifted by half a width.
SIMD_INLINE inline Position toMiddle(Position p, float row, float width, float height) {
    float shift = 0.5f * row - simd::floor(0.5f * row);
    return {(simd::floor(p.x / width - shift + 0.5f) + shift) * width - p.x, row * height - p.y};
}

/// At the centre is the middle of a hexagon, whose sides are as long as the scale. (That and the places of
/// the hexagons are our own: no picture is known.)
Image build(const Inputs& in) {
    double side = cellSize(in, "inputScale");
    return warp(in.image("inputImage"), "hexagonal pixellate", upTo(side), From{cellCentre(in)},
                [width = static_cast<float>(side * std::numbers::sqrt3),
                 height = static_cast<float>(side * 1.5)](Position p) SIMD_INLINE -> Position {
                    // The nearest middle is in the row below the point or in that above it.
                    float below = simd::floor(p.y / height);
                    Position a = toMiddle(p, below, width, height), b = toMiddle(p, below + 1, width, height);
                    bool lower = a.x * a.x + a.y * a.y < b.x * b.x + b.y * b.y;
                    return {lower ? a.x : b.x, lower ? a.y : b.y};
                });
}

const Registrar filter{
    {"CIHexagonalPixellate",
     "Hexagonal Pixelate",
     "Makes a picture of hexagons of one colour each.",
     ourOwn("the colour in the middle of each hexagon"),
     "10.5",
     categories("Stylize Video StillImage BuiltIn"),
     {imageInput(), cellCentreInput(),
      numberInput("inputScale", "Scale", "Distance",
                  {.value = 8, .identity = 1, .min = 1, .sliderMin = 1, .sliderMax = 100})},
     build}};

} // namespace

} // namespace engine
