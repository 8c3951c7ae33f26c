#include "registry.h"

#include <color/vecmath.h>

#include <cmath>

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

/// The same along a line: what counts is the distance from it.
class Ridge : public Warp {
  public:
    Ridge(Point centre, double radius, double angle, double strength)
        : centre_(centre), radius_(radius), strength_(strength), nx_(-std::sin(angle)), ny_(std::cos(angle)) {
    }

    std::string name() const override { return "ridge"; }
    Rect extent(const Rect& source) const override { return source.grown(reach(), reach()); }
    Rect region(const Rect& area) const override { return area.grown(reach(), reach()); }
    void displace(int x, int y, int n, float* dx, float* dy) const override {
        float first = static_cast<float>((x + 0.5 - centre_.x) * nx_ + (y + 0.5 - centre_.y) * ny_);
        float nx = static_cast<float>(nx_), ny = static_cast<float>(ny_);
        float scale = static_cast<float>(1 / (radius_ * radius_)), strength = static_cast<float>(strength_);
        simd::run([=]() SIMD_INLINE {
            SIMD_LOOP
            for (int i = 0; i < n; ++i) {
                float d = first + static_cast<float>(i) * nx, inside = simd::max(1 - d * d * scale, 0);
                float nearer = strength * inside * inside * d;
                dx[i] = -nearer * nx;
                dy[i] = -nearer * ny;
            }
        });
    }

  private:
    /// d (1 - d^2)^2 is greatest at d = sqrt(1/5).
    double reach() const { return std::abs(strength_) * radius_ * 0.2863; }

    Point centre_;
    double radius_, strength_, nx_, ny_;
};

Image ridged(const Inputs& in) {
    Image image = in.image("inputImage");
    double radius = in.number("inputRadius", 0, 1e6), strength = in.number("inputScale", -10, 10);
    if (radius < 0.5 || strength == 0) return image;
    return warp(image, std::make_shared<Ridge>(in.point("inputCenter"), radius,
                                               in.number("inputAngle", -1e6, 1e6), strength));
}

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

const Registrar ridges{
    {"CIBumpDistortionLinear",
     "Bump Distortion Linear",
     "Raises a ridge out of a picture, or presses a groove in.",
     "10.5",
     categories("DistortionEffect Video StillImage BuiltIn"),
     {imageInput(), vectorInput("inputCenter", "Center", "Position", {150, 150}),
      numberInput("inputRadius", "Radius", "Distance",
                  {.value = 300, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 600}),
      numberInput("inputAngle", "Angle", "Angle",
                  {.value = 0, .identity = 0, .sliderMin = 0, .sliderMax = 6.283185307179586}),
      numberInput("inputScale", "Scale", "Scalar",
                  {.value = 0.5, .identity = 1, .min = -1, .sliderMin = 0, .sliderMax = 1})},
     ridged}};

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
