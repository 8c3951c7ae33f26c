// CIDisintegrateWithMaskTransition: takes a picture away by the brightness of a mask.
#include "kernel.h"
#include "transition.h"

namespace engine::transitions {

namespace {

/// The light of the mask in red, and in alpha how much it changes between neighbours.
Image lightOf(const Image& mask) {
    return neighbourhood(mask, "disintegrate", 1, [=](const RenderContext&) -> NeighbourFunction {
        return [=](const Pixels& in, int x, int y, int n, const Span& out) {
            eachIndex(n, [=, here = in.at(x, y), left = in.at(x - 1, y), below = in.at(x, y - 1)](int i)
                             SIMD_INLINE {
                                 float light = luminance(load(here, i));
                                 float steepness = simd::max(simd::abs(light - luminance(load(left, i))),
                                                             simd::abs(light - luminance(load(below, i))));
                                 store(out, i, {light, 0, 0, steepness});
                             });
        };
    });
}

/// The picture stays where the mask's light is above the time, so that it goes where the mask is dark first.
/// It grows brighter with the time, and what comes out below it is darker before its end, in the shadow still
/// more. Edges are as soft as the mask's steepness allows, the shadow's by its radius more. Fitted to Core
/// Image's picture at time 0.5 (mean residual 0.1 of 255); that brightness is linear in time is our own
/// guess.
Image build(const Inputs& in) {
    Image image = in.image("inputImage"), target = in.image("inputTargetImage"),
          mask = in.image("inputMaskImage");
    if (!image) return nullptr;
    if (time(in) == 0) return image;
    // Where the mask is white, the edge is only reached then.
    if (time(in) == 1) return target ? target : empty();
    float when = static_cast<float>(time(in)), lit = 1 + 0.25f * when, shaded = 0.75f + 0.25f * when;
    float density = static_cast<float>(in.number("inputShadowDensity", 0, 1));
    Point offset = in.point("inputShadowOffset");
    auto perRadius = static_cast<float>(1 / std::max(in.number("inputShadowRadius", 0, 1000), 0.01));
    Image light = lightOf(mask), shadow = transform(light, Affine::translation(offset.x, offset.y));
    Rect extent = target ? image->extent().unite(target->extent()) : image->extent();
    return eachPixel("disintegrate", extent, {image, target, light, shadow},
                     [=](Pixel p, Pixel below, Pixel here, Pixel there) SIMD_INLINE {
                         // In pixels, from the lines where the mask's light equals the time.
                         float perStep = 1 / simd::max(here.a, 1e-6f);
                         float inside = (here.r - when) * perStep, under = (there.r - when) * perStep;
                         float dark = density * simd::unit(0.5f + under * perRadius);
                         return mix(below * (shaded * (1 - dark)), p * lit, simd::unit(0.5f + inside));
                     });
}

const Registrar filter{
    {"CIDisintegrateWithMaskTransition",
     "Disintegrate With Mask",
     "Takes a picture away where a mask is bright, then where it is darker; what is left casts a shadow.",
     fitted("time 0.5; that brightness is linear in time is our own", 0.1),
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
