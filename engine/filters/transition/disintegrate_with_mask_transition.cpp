// CIDisintegrateWithMaskTransition: takes a picture away by the brightness of a mask.
#include "kernel.h"
#include "transition.h"

namespace engine::transitions {

namespace {

/// How much of a picture is left where the mask has this pixel: from all to nothing within a twentieth of the
/// range of coded brightness.
SIMD_INLINE inline float left(Pixel mask, float time) {
    constexpr float soft = 0.05f;
    float light = simd::linearToSrgb(simd::unit(luminance(mask)));
    return 1 - simd::unit((light - 1 + time * (1 + soft)) / soft);
}

/// The picture disappears where the mask is bright, then where it is darker; what is left casts a shadow on
/// the target. (Core Image does not document its formula.)
Image build(const Inputs& in) {
    Image image = in.image("inputImage"), target = in.image("inputTargetImage"),
          mask = in.image("inputMaskImage");
    if (!image) return nullptr;
    float when = static_cast<float>(time(in));
    float density = static_cast<float>(in.number("inputShadowDensity", 0, 1));
    Point offset = in.point("inputShadowOffset");
    Image remains = eachPixel(mask, "remains", [=](Pixel p) SIMD_INLINE {
        return Pixel{p.r, p.g, p.b, left(p, when)};
    });
    Image shadow = transform(gaussian(remains, in.number("inputShadowRadius", 0, 1000)),
                             Affine::translation(offset.x, offset.y));
    Rect extent = target ? image->extent().unite(target->extent()) : image->extent();
    return eachPixel("disintegrate", extent, {image, target, mask, shadow},
                     [=](Pixel p, Pixel below, Pixel mask, Pixel shadow) SIMD_INLINE {
                         return mix(below * (1 - density * simd::unit(shadow.a)), p, left(mask, when));
                     });
}

const Registrar filter{
    {"CIDisintegrateWithMaskTransition",
     "Disintegrate With Mask",
     "Takes a picture away where a mask is bright, then where it is darker; what is left casts a shadow.",
     "10.4",
     categories("Transition Video StillImage BuiltIn"),
     {imageInput(), targetInput(), imageInput("inputMaskImage", "Mask Image"), timeInput(),
      numberInput("inputShadowRadius", "Shadow Radius", "Distance",
                  {.value = 8, .min = 0, .sliderMin = 0, .sliderMax = 50}),
      numberInput("inputShadowDensity", "Shadow Density", "Scalar",
                  {.value = 0.65, .identity = 0, .min = 0, .max = 1, .sliderMin = 0, .sliderMax = 1}),
      vectorInput("inputShadowOffset", "Shadow Offset", "Offset", {0, -10}, Numbers{0, 0})},
     build}};

} // namespace

} // namespace engine::transitions
