// CITorusLensDistortion: a ring of glass on a picture.
#include "lens.h"

namespace engine::distortion {

namespace {

/// The glass lies between two circles, the outer one of that radius.
Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    Point centre = in.point("inputCenter");
    double radius = in.number("inputRadius", 0, 1e6),
           width = std::min(in.number("inputWidth", 0, 1e6), radius);
    if (width < 1 || refraction(in) == 1) return image;
    Reach reach = insideCircle(centre, radius);
    double around = beyondLens(width / 2, refraction(in));
    reach.region = [=, inside = reach.region](const Rect& area) {
        return inside(area).grown(around, around);
    };
    return warp(
        image, "torus", reach, From{centre},
        [half = static_cast<float>(width / 2), middle = static_cast<float>(radius - width / 2),
         bend = static_cast<float>(1 / refraction(in))](Position p) SIMD_INLINE {
            float distance = simd::sqrt(p.x * p.x + p.y * p.y), q = (distance - middle) / half;
            float nearer = bent(simd::clamp(q, -1, 1), bend) * half / simd::max(distance, 1e-6f);
            return Position{simd::abs(q) < 1 ? -nearer * p.x : 0, simd::abs(q) < 1 ? -nearer * p.y : 0};
        });
}

const Registrar filter{
    {"CITorusLensDistortion",
     "Torus Lens Distortion",
     "Lays a ring of glass on a picture.",
     ourOwn("Snell's law for a ring of glass"),
     "10.4",
     categories("DistortionEffect Video StillImage BuiltIn"),
     {imageInput(), vectorInput("inputCenter", "Center", "Position", {150, 150}),
      numberInput("inputRadius", "Radius", "Distance",
                  {.value = 160, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 500}),
      numberInput("inputWidth", "Width", "Distance",
                  {.value = 80, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 200}),
      refractionInput()},
     build}};

} // namespace

} // namespace engine::distortion
