// CIModTransition: a picture with holes that grow and show another one.
#include "kernel.h"
#include "transition.h"

#include <cmath>

namespace engine::transitions {

namespace {

/// Across the picture the pattern of holes is compressed, about half a compression to the right of the
/// centre, farther away the more; the centre itself stays. Constants fitted to both of Core Image's pictures.
struct Compression {
    float compression, perCompression, begin;
    static constexpr float slope = 1.61717f, knee = 1.32363f, bend = 0.5f;

    explicit Compression(double compression)
        : compression(static_cast<float>(compression)), perCompression(static_cast<float>(1 / compression)),
          begin(squeezed(-bend)) {}
    SIMD_INLINE float at(float x) const {
        return compression * (squeezed(x * perCompression - bend) - begin);
    }

  private:
    SIMD_INLINE static float squeezed(float t) { return slope * t / (1 + simd::abs(t) / knee); }
};

/// Round holes on a square lattice, `radius` apart and turned by the angle, to which they come from an eighth
/// of a turn. They grow with the time until they overlap.
struct Holes {
    Compression across;
    float c, s, perRadius, perSize;
    static constexpr float full = 0.73652f, sharpness = 17;

    Holes(const Inputs& in, double time)
        : across(in.number("inputCompression", 1, 1e6)),
          perRadius(static_cast<float>(1 / in.number("inputRadius", 1, 1e6))),
          perSize(static_cast<float>(1 / std::max(full * time, 1e-6))) {
        double angle = (1 - time) * pi / 4 + time * in.number("inputAngle", -1e6, 1e6);
        c = static_cast<float>(std::cos(angle)) * perRadius;
        s = static_cast<float>(std::sin(angle)) * perRadius;
    }

    /// How much of a hole there is at a position from the centre.
    SIMD_INLINE float at(Position p) const {
        float x = across.at(p.x), u = c * x + s * p.y, v = c * p.y - s * x;
        u -= simd::floor(u + 0.5f), v -= simd::floor(v + 0.5f);
        return simd::unit(0.5f + sharpness * (1 - simd::sqrt(u * u + v * v) * perSize));
    }
};

Image build(const Inputs& in) {
    Image image = in.image("inputImage"), target = in.image("inputTargetImage");
    if (!image) return nullptr;
    // Without a size, a hole's very centre would still be one.
    if (time(in) == 0) return image;
    Holes holes(in, time(in));
    From place{in.point("inputCenter")};
    return sum(weighted(image, "mod", place, [=](Position p) SIMD_INLINE { return 1 - holes.at(p); }),
               weighted(target, "mod", place, [=](Position p) SIMD_INLINE { return holes.at(p); }));
}

const Registrar filter{
    {"CIModTransition",
     "Mod",
     "Shows a picture through holes in another one, which grow.",
     fitted("holes on a lattice that is compressed away from the centre", 0.02),
     "10.4",
     categories("Transition Video StillImage BuiltIn"),
     {imageInput(), targetInput(), vectorInput("inputCenter", "Center", "Position", {150, 150}), timeInput(),
      numberInput("inputAngle", "Angle", "Angle",
                  {.value = 2, .identity = 0, .sliderMin = -2 * pi, .sliderMax = 2 * pi}),
      numberInput("inputRadius", "Radius", "Distance",
                  {.value = 150, .min = 1, .sliderMin = 1, .sliderMax = 200}),
      numberInput("inputCompression", "Compression", "Distance",
                  {.value = 300, .min = 1, .sliderMin = 100, .sliderMax = 800})},
     build}};

} // namespace

} // namespace engine::transitions
