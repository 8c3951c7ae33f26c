// CICircularWrap: a picture bent around a circle.
#include "filter.h"
#include "kernel.h"

#include <cmath>

namespace engine {

namespace {

/// The lower edge of the picture lies on the circle, its middle at the angle, counted from the top; the rows
/// above it are larger circles. What is longer than the circle ends on the opposite side.
class CircularWrap : public Warp {
  public:
    CircularWrap(Point centre, double radius, double angle, const Rect& source)
        : centre_(centre), radius_(radius), angle_(pi / 2 + angle), source_(source) {}

    std::string name() const override { return "circular wrap"; }
    Rect extent(const Rect& source) const override {
        return squareAround(centre_, radius_ + source.height());
    }
    Rect region(const Rect&) const override { return source_; }
    void displace(int x, int y, int n, float* dx, float* dy) const override {
        double py = y + 0.5 - centre_.y, middle = (source_.x0 + source_.x1) / 2;
        for (int i = 0; i < n; ++i) {
            double px = x + i + 0.5 - centre_.x, turn = angle_ - std::atan2(py, px);
            turn -= 2 * pi * std::round(turn / (2 * pi));
            dx[i] = static_cast<float>(middle + turn * radius_ - px - centre_.x);
            dy[i] = static_cast<float>(source_.y0 + std::hypot(px, py) - radius_ - py - centre_.y);
        }
    }

  private:
    Point centre_;
    double radius_, angle_;
    Rect source_;
};

/// An infinite picture has no edge to lie on the circle.
Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    if (!image || image->extent().isInfinite()) return image;
    return warp(image,
                std::make_shared<CircularWrap>(in.point("inputCenter"), in.number("inputRadius", 0, 1e6),
                                               in.number("inputAngle", -1e6, 1e6), image->extent()));
}

const Registrar filter{{"CICircularWrap",
                        "Circular Wrap Distortion",
                        "Bends a picture around a circle.",
                        ourOwn("the rows of the picture as circles, the lowest on the radius"),
                        "10.5",
                        categories("DistortionEffect Video StillImage BuiltIn"),
                        {imageInput(), vectorInput("inputCenter", "Center", "Position", {150, 150}),
                         numberInput("inputRadius", "Radius", "Distance",
                                     {.value = 150, .min = 0, .sliderMin = 0, .sliderMax = 600}),
                         numberInput("inputAngle", "Angle", "Angle",
                                     {.value = 0, .identity = 0, .sliderMin = -pi, .sliderMax = pi})},
                        build}};

} // namespace

} // namespace engine
