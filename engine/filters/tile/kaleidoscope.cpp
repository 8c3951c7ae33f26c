// CIKaleidoscope: a sector of a picture in mirrors that stand in a circle.
#include "filter.h"
#include "kernel.h"

#include <cmath>

namespace engine {

namespace {

/// The circle around the centre in `count` sectors, each its own mirror image: a pixel at an angle t to
/// either side of the middle of its sector reads at the angle t beyond inputAngle. (Fitted to Core Image's
/// picture, whose pixels begin at the fractional corner of its extent: mean residual 0.5 of 255 there.)
class Kaleidoscope : public Warp {
  public:
    Kaleidoscope(Point centre, double count, double angle)
        : centre_(centre), sector_(2 * pi / count), angle_(angle) {}

    std::string name() const override { return "kaleidoscope"; }
    Rect extent(const Rect& source) const override { return around(source); }
    Rect region(const Rect& area) const override { return around(area); }
    void displace(int x, int y, int n, float* dx, float* dy) const override {
        double py = y + 0.5 - centre_.y;
        for (int i = 0; i < n; ++i) {
            double px = x + i + 0.5 - centre_.x, radius = std::hypot(px, py);
            double sectors = (std::atan2(py, px) - angle_) / sector_;
            double angle = angle_ + std::abs(sectors - std::round(sectors)) * sector_;
            dx[i] = static_cast<float>(radius * std::cos(angle) - px);
            dy[i] = static_cast<float>(radius * std::sin(angle) - py);
        }
    }

  private:
    /// The square around the circle through the farthest corner.
    Rect around(const Rect& r) const {
        if (r.isInfinite()) return Rect::infinite();
        double radius = std::hypot(std::max(std::abs(r.x0 - centre_.x), std::abs(r.x1 - centre_.x)),
                                   std::max(std::abs(r.y0 - centre_.y), std::abs(r.y1 - centre_.y)));
        return squareAround(centre_, radius);
    }

    Point centre_;
    double sector_, angle_;
};

Image build(const Inputs& in) {
    return warp(in.image("inputImage"),
                std::make_shared<Kaleidoscope>(in.point("inputCenter"), in.number("inputCount", 1, 1e4),
                                               in.number("inputAngle", -1e6, 1e6)));
}

const Registrar filter{
    {"CIKaleidoscope",
     "Kaleidoscope",
     "Shows a sector of a picture in mirrors that stand in a circle.",
     fitted("sectors, each its own mirror image (the residual is that from the fractional corner of the "
            "picture)",
            0.5),
     "10.4",
     categories("TileEffect Video StillImage BuiltIn"),
     {imageInput(),
      numberInput("inputCount", "Count", "Scalar", {.value = 6, .min = 1, .sliderMin = 1, .sliderMax = 64}),
      vectorInput("inputCenter", "Center", "Position", {150, 150}),
      numberInput("inputAngle", "Angle", "Angle",
                  {.value = 0, .identity = 0, .sliderMin = -pi, .sliderMax = pi})},
     build}};

} // namespace

} // namespace engine
