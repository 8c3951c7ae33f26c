// CIGlassLozenge: a long lens with round ends on a picture.
#include "lens.h"

namespace engine::distortion {

namespace {

/// A lens that covers all places within a radius of the line between two points.
Reach aroundLine(Point from, Point to, double radius, double refraction) {
    auto box = [=](double around) {
        return Rect{std::min(from.x, to.x) - around, std::min(from.y, to.y) - around,
                    std::max(from.x, to.x) + around, std::max(from.y, to.y) + around};
    };
    auto touched = [lens = box(radius)](const Rect& whole) {
        return [=](const Rect& r) { return r.intersect(lens).isEmpty() ? r : r.unite(whole); };
    };
    return {touched(box(radius)), touched(box(radius + beyondLens(radius, refraction)))};
}

Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    double radius = in.number("inputRadius", 0, 1e6);
    if (radius < 0.5 || refraction(in) == 1) return image;
    Point from = in.point("inputPoint0"), to = in.point("inputPoint1");
    float sx = static_cast<float>(to.x - from.x), sy = static_cast<float>(to.y - from.y);
    float perSquare = 1 / simd::max(sx * sx + sy * sy, 1e-6f);
    return warp(
        image, "lozenge", aroundLine(from, to, radius, refraction(in)), From{from},
        [=, radius = static_cast<float>(radius),
         bend = static_cast<float>(1 / refraction(in))](Position p) SIMD_INLINE {
            float along = simd::unit((p.x * sx + p.y * sy) * perSquare);
            float qx = p.x - along * sx, qy = p.y - along * sy;
            float distance = simd::sqrt(qx * qx + qy * qy);
            float nearer = bent(simd::min(distance / radius, 1), bend) * radius / simd::max(distance, 1e-6f);
            return Position{distance < radius ? -nearer * qx : 0, distance < radius ? -nearer * qy : 0};
        });
}

const Registrar filter{
    {"CIGlassLozenge",
     "Glass Lozenge",
     "Lays a long lens with round ends on a picture.",
     ourOwn("Snell's law for a half cylinder"),
     "10.4",
     categories("DistortionEffect Video StillImage BuiltIn"),
     {imageInput(), vectorInput("inputPoint0", "Point 0", "Position", {150, 150}),
      vectorInput("inputPoint1", "Point 1", "Position", {350, 150}),
      numberInput("inputRadius", "Radius", "Distance",
                  {.value = 100, .identity = 100, .min = 0, .sliderMin = 0, .sliderMax = 1000}),
      refractionInput()},
     build}};

} // namespace

} // namespace engine::distortion
