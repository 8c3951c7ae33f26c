// Lenses of glass that lie on a picture.
#include "registry.h"

#include <color/vecmath.h>

#include <cmath>

namespace engine {

namespace {

namespace simd = color::simd;

/// Where light comes from that meets a half cylinder (or the like) of radius 1 from above, `q` beside its
/// axis: by how much nearer to the axis, after Snell's law. (Core Image does not tell its own formula.)
SIMD_INLINE inline float bent(float q, float perRefraction) {
    float sine = simd::abs(q), cosine = simd::sqrt(1 - q * q);
    float sine2 = simd::min(sine * perRefraction, 1), cosine2 = simd::sqrt(1 - sine2 * sine2);
    float across = sine * cosine2 - cosine * sine2, along = cosine * cosine2 + sine * sine2;
    return simd::copySign(cosine * across / simd::max(along, 1e-6f), q);
}

/// Light that leaves for thinner glass (a refraction below 1) comes from beyond the lens.
double reach(double radius, double refraction) { return refraction < 1 ? radius / refraction : 0; }

/// All places within a radius of a line between two points.
class Lozenge : public Warp {
  public:
    Lozenge(Point from, Point to, double radius, double refraction)
        : from_(from), to_(to), radius_(radius), refraction_(refraction) {}

    std::string name() const override { return "lozenge"; }
    Rect extent(const Rect& source) const override { return touched(source, radius_); }
    Rect region(const Rect& area) const override {
        return touched(area, radius_ + reach(radius_, refraction_));
    }
    void displace(int x, int y, int n, float* dx, float* dy) const override {
        float x0 = static_cast<float>(x + 0.5 - from_.x), py = static_cast<float>(y + 0.5 - from_.y);
        float sx = static_cast<float>(to_.x - from_.x), sy = static_cast<float>(to_.y - from_.y);
        float perSquare = 1 / simd::max(sx * sx + sy * sy, 1e-6f);
        float radius = static_cast<float>(radius_), bend = static_cast<float>(1 / refraction_);
        simd::run([=]() SIMD_INLINE {
            SIMD_LOOP
            for (int i = 0; i < n; ++i) {
                float px = x0 + static_cast<float>(i), along = simd::unit((px * sx + py * sy) * perSquare);
                float qx = px - along * sx, qy = py - along * sy;
                float distance = simd::sqrt(qx * qx + qy * qy);
                float nearer =
                    bent(simd::min(distance / radius, 1), bend) * radius / simd::max(distance, 1e-6f);
                dx[i] = distance < radius ? -nearer * qx : 0;
                dy[i] = distance < radius ? -nearer * qy : 0;
            }
        });
    }

  private:
    Rect touched(const Rect& r, double around) const {
        Rect lens = Rect{std::min(from_.x, to_.x), std::min(from_.y, to_.y), std::max(from_.x, to_.x),
                         std::max(from_.y, to_.y)};
        Rect box{lens.x0 - radius_, lens.y0 - radius_, lens.x1 + radius_, lens.y1 + radius_};
        if (r.intersect(box).isEmpty()) return r;
        return r.unite({lens.x0 - around, lens.y0 - around, lens.x1 + around, lens.y1 + around});
    }

    Point from_, to_;
    double radius_, refraction_;
};

/// A ring of glass between two circles.
class Torus : public DiscWarp {
  public:
    Torus(Point centre, double radius, double width, double refraction)
        : DiscWarp(centre, radius), half_(width / 2), refraction_(refraction) {}

    std::string name() const override { return "torus"; }
    Rect region(const Rect& area) const override {
        double around = reach(half_, refraction_);
        return DiscWarp::region(area).grown(around, around);
    }
    void displace(int x, int y, int n, float* dx, float* dy) const override {
        float x0 = static_cast<float>(x + 0.5 - centre_.x), py = static_cast<float>(y + 0.5 - centre_.y);
        float half = static_cast<float>(half_), middle = static_cast<float>(radius_ - half_);
        float bend = static_cast<float>(1 / refraction_);
        simd::run([=]() SIMD_INLINE {
            SIMD_LOOP
            for (int i = 0; i < n; ++i) {
                float px = x0 + static_cast<float>(i), distance = simd::sqrt(px * px + py * py);
                float q = (distance - middle) / half;
                float nearer = bent(simd::clamp(q, -1, 1), bend) * half / simd::max(distance, 1e-6f);
                dx[i] = simd::abs(q) < 1 ? -nearer * px : 0;
                dy[i] = simd::abs(q) < 1 ? -nearer * py : 0;
            }
        });
    }

  private:
    double half_, refraction_;
};

double refraction(const Inputs& in) { return in.number("inputRefraction", 0.1, 100); }

Image throughLozenge(const Inputs& in) {
    Image image = in.image("inputImage");
    double radius = in.number("inputRadius", 0, 1e6);
    if (radius < 0.5 || refraction(in) == 1) return image;
    return warp(image, std::make_shared<Lozenge>(in.point("inputPoint0"), in.point("inputPoint1"), radius,
                                                 refraction(in)));
}

Image throughTorus(const Inputs& in) {
    Image image = in.image("inputImage");
    double radius = in.number("inputRadius", 0, 1e6),
           width = std::min(in.number("inputWidth", 0, 1e6), radius);
    if (width < 1 || refraction(in) == 1) return image;
    return warp(image, std::make_shared<Torus>(in.point("inputCenter"), radius, width, refraction(in)));
}

InputInfo refractionInput() {
    return numberInput("inputRefraction", "Refraction", "Scalar",
                       {.value = 1.7, .identity = 1, .min = 0, .sliderMin = 0, .sliderMax = 5});
}

const Registrar lozenges{
    {"CIGlassLozenge",
     "Glass Lozenge",
     "Lays a long lens with round ends on a picture.",
     "10.4",
     categories("DistortionEffect Video StillImage BuiltIn"),
     {imageInput(), vectorInput("inputPoint0", "Point 0", "Position", {150, 150}),
      vectorInput("inputPoint1", "Point 1", "Position", {350, 150}),
      numberInput("inputRadius", "Radius", "Distance",
                  {.value = 100, .identity = 100, .min = 0, .sliderMin = 0, .sliderMax = 1000}),
      refractionInput()},
     throughLozenge}};

const Registrar tori{{"CITorusLensDistortion",
                      "Torus Lens Distortion",
                      "Lays a ring of glass on a picture.",
                      "10.4",
                      categories("DistortionEffect Video StillImage BuiltIn"),
                      {imageInput(), vectorInput("inputCenter", "Center", "Position", {150, 150}),
                       numberInput("inputRadius", "Radius", "Distance",
                                   {.value = 160, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 500}),
                       numberInput("inputWidth", "Width", "Distance",
                                   {.value = 80, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 200}),
                       refractionInput()},
                      throughTorus}};

} // namespace

} // namespace engine
