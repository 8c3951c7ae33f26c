#include "registry.h"

#include <color/vecmath.h>

#include <cmath>

namespace engine {

namespace {

/// Turns by an angle that falls from the centre to the rim as (1 - distance / radius)^2, so that neither
/// the picture nor its direction breaks at the rim; in a vortex, steeper, with the fourth power.
class Twirl : public DiscWarp {
  public:
    Twirl(Point centre, double radius, double angle, bool steep)
        : DiscWarp(centre, radius), angle_(angle), steep_(steep) {}

    std::string name() const override { return "twirl"; }
    void displace(int x, int y, int n, float* dx, float* dy) const override {
        float x0 = static_cast<float>(x + 0.5 - centre_.x), py = static_cast<float>(y + 0.5 - centre_.y);
        float scale = static_cast<float>(1 / radius_), angle = static_cast<float>(-angle_);
        color::simd::run([=, steep = steep_]() SIMD_INLINE {
            namespace simd = color::simd;
            SIMD_LOOP
            for (int i = 0; i < n; ++i) {
                float px = x0 + static_cast<float>(i);
                float inside = simd::max(1 - simd::sqrt(px * px + py * py) * scale, 0);
                float share = inside * inside;
                float turn = angle * (steep ? share * share : share), s = simd::sin(turn),
                      c = simd::cos(turn) - 1;
                // Outside, the pixels stay as they are, to the last digit.
                dx[i] = inside > 0 ? c * px - s * py : 0;
                dy[i] = inside > 0 ? s * px + c * py : 0;
            }
        });
    }

  private:
    double angle_;
    bool steep_;
};

template <bool steep>
Image turned(const Inputs& in) {
    double radius = in.number("inputRadius", 0, 1e6), angle = in.number("inputAngle", -1000, 1000);
    Image image = in.image("inputImage");
    if (radius < 0.5 || angle == 0) return image;
    return warp(image, std::make_shared<Twirl>(in.point("inputCenter"), radius, angle, steep));
}

const Registrar filter{
    {"CITwirlDistortion",
     "Twirl Distortion",
     "Turns the inside of a circle, most of all its centre.",
     "10.4",
     categories("DistortionEffect Video StillImage BuiltIn"),
     {imageInput(), vectorInput("inputCenter", "Center", "Position", {150, 150}),
      numberInput("inputRadius", "Radius", "Distance",
                  {.value = 300, .identity = 300, .min = 0, .sliderMin = 0, .sliderMax = 500}),
      numberInput("inputAngle", "Angle", "Angle",
                  {.value = 3.141592653589793,
                   .identity = 0,
                   .sliderMin = -12.56637061435917,
                   .sliderMax = 12.56637061435917})},
     turned<false>}};

const Registrar vortex{
    {"CIVortexDistortion",
     "Vortex Distortion",
     "Turns the inside of a circle many times, like water that runs off.",
     "10.4",
     categories("DistortionEffect Video StillImage BuiltIn"),
     {imageInput(), vectorInput("inputCenter", "Center", "Position", {150, 150}),
      numberInput("inputRadius", "Radius", "Distance",
                  {.value = 300, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 800}),
      numberInput("inputAngle", "Angle", "Angle",
                  {.value = 56.54866776461628,
                   .identity = 0,
                   .sliderMin = -94.24777960769379,
                   .sliderMax = 94.24777960769379})},
     turned<true>}};

} // namespace

} // namespace engine
