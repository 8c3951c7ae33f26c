// CIPixellate: squares of one colour each.
#include "cells.h"

namespace engine {

namespace {

/// The way from a coordinate to the middle of its cell.
SIMD_INLINE inline float toMiddle(float v, float side) { return (simd::floor(v / side) + 0.5f) * side - v; }

/// The lines between squares go through the centre, and the picture grows by half a square to each side.
/// (Fitted to Core Image's picture: mean residual 0.08 of 255 once it is mixed in coded colours as there.)
Image build(const Inputs& in) {
    double side = cellSize(in, "inputScale");
    return warp(in.image("inputImage"), "pixellate", upTo(side / 2), From{cellCentre(in)},
                [side = static_cast<float>(side)](Position p) SIMD_INLINE -> Position {
                    return {toMiddle(p.x, side), toMiddle(p.y, side)};
                });
}

const Registrar filter{
    {"CIPixellate",
     "Pixelate",
     "Makes a picture of squares of one colour each.",
     fitted(
         "the colour in the middle of each square (the residual is that of coded colours, as in the picture)",
         0.08),
     "10.4",
     categories("Stylize Video StillImage BuiltIn"),
     {imageInput(), cellCentreInput(),
      numberInput("inputScale", "Scale", "Distance",
                  {.value = 8, .min = 1, .sliderMin = 1, .sliderMax = 100})},
     build}};

} // namespace

} // namespace engine
