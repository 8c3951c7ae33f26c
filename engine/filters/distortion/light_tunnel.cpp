// CILightTunnel: the rim of a circle drawn outwards in spirals.
#include "filter.h"
#include "kernel.h"

#include <cmath>

namespace engine {

namespace {

/// Inside the circle the picture stays. Outside, a place at distance r shows the rim, seen at the place's own
/// angle plus radius / (2 pi) * ln(r / radius). (Fitted to a picture of Core Image's with radius 100 and no
/// rotation, mean residual 1.1 of 255. That the rotation turns the tunnel is our own reading: no picture with
/// one is known.)
class Tunnel : public Warp {
  public:
    Tunnel(Point centre, double radius, double rotation)
        : centre_(centre), radius_(radius), rotation_(rotation) {}

    std::string name() const override { return "light tunnel"; }
    Rect extent(const Rect& source) const override {
        return source.intersect(disc()).isEmpty() ? Rect{} : Rect::infinite();
    }
    Rect region(const Rect&) const override { return disc(); }
    void displace(int x, int y, int n, float* dx, float* dy) const override {
        double py = y + 0.5 - centre_.y;
        for (int i = 0; i < n; ++i) {
            double px = x + i + 0.5 - centre_.x, far = std::hypot(px, py) / radius_;
            if (!(far > 1)) {
                dx[i] = dy[i] = 0;
                continue;
            }
            double turn = rotation_ + radius_ / (2 * pi) * std::log(far);
            double c = std::cos(turn) / far, s = std::sin(turn) / far;
            dx[i] = static_cast<float>(px * c - py * s - px);
            dy[i] = static_cast<float>(px * s + py * c - py);
        }
    }

  private:
    Rect disc() const {
        return {centre_.x - radius_, centre_.y - radius_, centre_.x + radius_, centre_.y + radius_};
    }

    Point centre_;
    double radius_, rotation_;
};

Image build(const Inputs& in) {
    double radius = in.number("inputRadius", 0, 1e6);
    Image image = in.image("inputImage");
    if (radius == 0) return image;
    return warp(image, std::make_shared<Tunnel>(in.point("inputCenter"), radius,
                                                in.number("inputRotation", -1e6, 1e6)));
}

const Registrar filter{{"CILightTunnel",
                        "Light Tunnel Distortion",
                        "Draws the rim of a circle outwards in spirals, like lights that rush by.",
                        fitted("no rotation; that the rotation turns the tunnel is our own reading", 1.1),
                        "10.10",
                        categories("DistortionEffect Video StillImage BuiltIn"),
                        {imageInput(), vectorInput("inputCenter", "Center", "Position", {150, 150}),
                         numberInput("inputRotation", "Rotation", "Angle",
                                     {.value = 0, .identity = 0, .sliderMin = 0, .sliderMax = pi / 2}),
                         numberInput("inputRadius", "Radius", "Distance",
                                     {.value = 100, .identity = 0, .sliderMin = 1, .sliderMax = 500})},
                        build}};

} // namespace

} // namespace engine
