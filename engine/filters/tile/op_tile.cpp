// CIOpTile: squares that show more than their share of a picture.
#include "filter.h"
#include "kernel.h"

#include <cmath>

namespace engine {

namespace {

/// Squares, side by side, that each show the picture around their own middle, made smaller by the scale.
/// (Our own: no picture of Core Image's is known. It has Core Image's identity, and more copies at larger
/// scales.)
class Segments : public Warp {
  public:
    Segments(Point centre, double scale, double angle, double width)
        : cosine_(std::cos(angle)), sine_(std::sin(angle)), scale_(scale), width_(width), centre_(centre) {}

    std::string name() const override { return "op tile"; }
    Rect extent(const Rect& source) const override { return source.grown(reach(), reach()); }
    Rect region(const Rect& area) const override { return area.grown(reach(), reach()); }
    void displace(int x, int y, int n, float* dx, float* dy) const override {
        eachIndex(n, [=, py = y + 0.5 - centre_.y, left = centre_.x, cosine = cosine_, sine = sine_,
                      width = width_, farther = scale_ - 1](int i) SIMD_INLINE {
            double px = x + i + 0.5 - left;
            double u = fromMiddle((px * cosine + py * sine) / width) * width * farther;
            double v = fromMiddle((py * cosine - px * sine) / width) * width * farther;
            dx[i] = static_cast<float>(u * cosine - v * sine);
            dy[i] = static_cast<float>(u * sine + v * cosine);
        });
    }

  private:
    SIMD_INLINE static double fromMiddle(double x) { return x - simd::nearest(x); }
    double reach() const { return width_ * std::sqrt(0.5) * std::abs(scale_ - 1); }

    double cosine_, sine_, scale_, width_;
    Point centre_;
};

Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    double scale = in.number("inputScale", 0, 1000);
    if (scale == 1) return image;
    return warp(image,
                std::make_shared<Segments>(in.point("inputCenter"), scale, in.number("inputAngle", -1e6, 1e6),
                                           in.number("inputWidth", 1, 1e6)));
}

const Registrar filter{
    {"CIOpTile",
     "Op Tile",
     "Cuts a picture into squares that show more than their share of it.",
     ourOwn("squares that show the picture around their middle, made smaller"),
     "10.4",
     categories("TileEffect Video StillImage BuiltIn"),
     {imageInput(), vectorInput("inputCenter", "Center", "Position", {150, 150}),
      numberInput("inputScale", "Scale", "Scalar",
                  {.value = 2.8, .identity = 1, .min = 0, .sliderMin = 0.1, .sliderMax = 10}),
      numberInput("inputAngle", "Angle", "Angle",
                  {.value = 0, .identity = 0, .sliderMin = -pi, .sliderMax = pi}),
      numberInput("inputWidth", "Width", "Distance",
                  {.value = 65, .identity = 65, .min = 0, .sliderMin = 1, .sliderMax = 1000})},
     build}};

} // namespace

} // namespace engine
