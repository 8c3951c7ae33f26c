#include "../src/registry.h"

#include <color/vecmath.h>

namespace engine {

namespace {

namespace simd = color::simd;

/// Reads nearer to the centre, or farther from it, by what falls from the centre to the rim: the distance
/// times 1 - strength (1 - (distance / radius)^2)^2. At the rim neither the picture nor its direction breaks.
/// (Core Image does not tell its own formula; this one has its directions and its identity.)
class Bump : public DiscWarp {
  public:
    Bump(Point centre, double radius, double strength) : DiscWarp(centre, radius), strength_(strength) {}

    std::string name() const override { return "bump"; }
    void displace(int x, int y, int n, float* dx, float* dy) const override {
        float x0 = static_cast<float>(x + 0.5 - centre_.x), py = static_cast<float>(y + 0.5 - centre_.y);
        float scale = static_cast<float>(1 / (radius_ * radius_)), strength = static_cast<float>(strength_);
        simd::run([=]() SIMD_INLINE {
            SIMD_LOOP
            for (int i = 0; i < n; ++i) {
                float px = x0 + static_cast<float>(i);
                float inside = simd::max(1 - (px * px + py * py) * scale, 0);
                float nearer = strength * inside * inside;
                dx[i] = -nearer * px;
                dy[i] = -nearer * py;
            }
        });
    }

  private:
    double strength_;
};

Image bumped(const Inputs& in, double strength) {
    Image image = in.image("inputImage");
    double radius = in.number("inputRadius", 0, 1e6);
    if (radius < 0.5 || strength == 0) return image;
    return warp(image, std::make_shared<Bump>(in.point("inputCenter"), radius, strength));
}

const Registrar bumps{{"CIBumpDistortion",
                       "Bump Distortion",
                       "Raises a round bump out of a picture, or presses one in.",
                       "10.4",
                       categories("DistortionEffect Video StillImage BuiltIn"),
                       {imageInput(), vectorInput("inputCenter", "Center", "Position", {150, 150}),
                        numberInput("inputRadius", "Radius", "Distance",
                                    {.value = 300, .min = 0, .sliderMin = 0, .sliderMax = 600}),
                        numberInput("inputScale", "Scale", "Scalar",
                                    {.value = 0.5, .identity = 0, .sliderMin = -1, .sliderMax = 1})},
                       [](const Inputs& in) { return bumped(in, in.number("inputScale", -10, 10)); }}};

const Registrar pinches{
    {"CIPinchDistortion",
     "Pinch Distortion",
     "Draws the inside of a circle together towards its centre.",
     "10.4",
     categories("DistortionEffect Video StillImage BuiltIn"),
     {imageInput(), vectorInput("inputCenter", "Center", "Position", {150, 150}),
      numberInput("inputRadius", "Radius", "Distance",
                  {.value = 300, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 1000}),
      numberInput("inputScale", "Scale", "Scalar",
                  {.value = 0.5, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 2})},
     [](const Inputs& in) { return bumped(in, -in.number("inputScale", 0, 10)); }}};

} // namespace

} // namespace engine
