// What happens around a circle: a splash, a hole, a picture bent around it. (Core Image does not tell its own
// formulas.)
#include "registry.h"

#include <color/vecmath.h>

#include <cmath>

namespace engine {

namespace {

constexpr double pi = 3.141592653589793;
namespace simd = color::simd;

Rect square(Point centre, double radius) {
    return {centre.x - radius, centre.y - radius, centre.x + radius, centre.y + radius};
}

/// What is shown lies nearer to the centre, by a share of the distance that `share` tells of its square.
template <class Share>
void towards(Point centre, int x, int y, int n, float* dx, float* dy, Share share) {
    float x0 = static_cast<float>(x + 0.5 - centre.x), py = static_cast<float>(y + 0.5 - centre.y);
    simd::run([=]() SIMD_INLINE {
        SIMD_LOOP
        for (int i = 0; i < n; ++i) {
            float px = x0 + static_cast<float>(i);
            float nearer = share(px * px + py * py);
            dx[i] = -nearer * px;
            dy[i] = -nearer * py;
        }
    });
}

/// Outside of the circle, what is on it is drawn outwards without end.
class Splash : public Warp {
  public:
    Splash(Point centre, double radius) : centre_(centre), radius_(radius) {}

    std::string name() const override { return "splash"; }
    Rect extent(const Rect& source) const override {
        return source.intersect(square(centre_, radius_)).isEmpty() ? Rect{} : Rect::infinite();
    }
    Rect region(const Rect&) const override { return square(centre_, radius_); }
    void displace(int x, int y, int n, float* dx, float* dy) const override {
        float radius = static_cast<float>(radius_);
        towards(centre_, x, y, n, dx, dy,
                [=](float square) SIMD_INLINE { return simd::max(1 - radius / simd::sqrt(square), 0); });
    }

  private:
    Point centre_;
    double radius_;
};

/// The centre is drawn apart to a circle, less and less outwards: what is shown at a distance d comes from
/// d - radius^2 / d.
class Hole : public Warp {
  public:
    Hole(Point centre, double radius) : centre_(centre), radius_(radius) {}

    std::string name() const override { return "hole"; }
    Rect extent(const Rect& source) const override { return source.grown(radius_, radius_); }
    Rect region(const Rect& area) const override { return area.grown(radius_, radius_); }
    void displace(int x, int y, int n, float* dx, float* dy) const override {
        float rim = static_cast<float>(radius_ * radius_);
        // At the rim and inside, the centre.
        towards(centre_, x, y, n, dx, dy,
                [=](float square) SIMD_INLINE { return simd::min(rim / simd::max(square, 1e-6f), 1); });
    }

  private:
    Point centre_;
    double radius_;
};

/// The lower edge of the picture lies on the circle, its middle where the angle is, seen from the top; the
/// rows above it are circles around that one. What is longer than the circle ends opposite.
class Wrapping : public Warp {
  public:
    Wrapping(Point centre, double radius, double angle, const Rect& source)
        : centre_(centre), radius_(radius), angle_(pi / 2 + angle), source_(source) {}

    std::string name() const override { return "circular wrap"; }
    Rect extent(const Rect& source) const override { return square(centre_, radius_ + source.height()); }
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

Image splashed(const Inputs& in) {
    return warp(in.image("inputImage"),
                std::make_shared<Splash>(in.point("inputCenter"), in.number("inputRadius", 0, 1e6)));
}

Image withHole(const Inputs& in) {
    Point c = in.point("inputCenter");
    double radius = in.number("inputRadius", 0.01, 1e6);
    return weighted(warp(in.image("inputImage"), std::make_shared<Hole>(c, radius)), "hole",
                    [=](int x, int y, int n, float* weights) {
                        float x0 = static_cast<float>(x + 0.5 - c.x), py = static_cast<float>(y + 0.5 - c.y);
                        float edge = static_cast<float>(radius - 0.5);
                        simd::run([=]() SIMD_INLINE {
                            SIMD_LOOP
                            for (int i = 0; i < n; ++i) {
                                float px = x0 + static_cast<float>(i);
                                weights[i] = simd::unit(simd::sqrt(px * px + py * py) - edge);
                            }
                        });
                    });
}

/// An endless picture has no edge to lie on the circle.
Image wrapped(const Inputs& in) {
    Image image = in.image("inputImage");
    if (!image || image->extent().isInfinite()) return image;
    return warp(image, std::make_shared<Wrapping>(in.point("inputCenter"), in.number("inputRadius", 0, 1e6),
                                                  in.number("inputAngle", -1e6, 1e6), image->extent()));
}

const Registrar splashes{{"CICircleSplashDistortion",
                          "Circle Splash Distortion",
                          "Draws the rim of a circle outwards without end.",
                          "10.4",
                          categories("DistortionEffect Video StillImage BuiltIn"),
                          {imageInput(), vectorInput("inputCenter", "Center", "Position", {150, 150}),
                           numberInput("inputRadius", "Radius", "Distance",
                                       {.value = 150, .min = 0, .sliderMin = 0, .sliderMax = 1000})},
                          splashed}};

const Registrar holes{
    {"CIHoleDistortion",
     "Hole Distortion",
     "Opens a round hole and pushes a picture outwards around it.",
     "10.4",
     categories("DistortionEffect Video StillImage BuiltIn"),
     {imageInput(), vectorInput("inputCenter", "Center", "Position", {150, 150}),
      numberInput("inputRadius", "Radius", "Distance",
                  {.value = 150, .identity = 0.1, .min = 0.01, .sliderMin = 0.01, .sliderMax = 1000})},
     withHole}};

const Registrar wraps{{"CICircularWrap",
                       "Circular Wrap Distortion",
                       "Bends a picture around a circle.",
                       "10.5",
                       categories("DistortionEffect Video StillImage BuiltIn"),
                       {imageInput(), vectorInput("inputCenter", "Center", "Position", {150, 150}),
                        numberInput("inputRadius", "Radius", "Distance",
                                    {.value = 150, .min = 0, .sliderMin = 0, .sliderMax = 600}),
                        numberInput("inputAngle", "Angle", "Angle",
                                    {.value = 0, .identity = 0, .sliderMin = -pi, .sliderMax = pi})},
                       wrapped}};

} // namespace

} // namespace engine
