// CICopyMachineTransition: a bar of light that leaves another picture behind, as a copier does.
#include "kernel.h"
#include "transition.h"

namespace engine::transitions {

namespace {

/// A bar as wide as the width runs over the extent in the first 65 hundredths of the time. Across it the
/// picture turns into the target, and its light is added, brightest near the bar's front. Fitted to Core
/// Image's pictures (mean residual 0.04 of 255), which also take the colour's components for linear ones.
Image build(const Inputs& in) {
    Image image = in.image("inputImage"), target = in.image("inputTargetImage");
    if (!image) return nullptr;
    constexpr double done = 0.65;
    constexpr float brightest = 0.83f;
    double width = in.number("inputWidth", 0.1, 1e6), angle = in.number("inputAngle", -1e6, 1e6);
    Point direction{std::cos(angle), std::sin(angle)};
    Stretch way = along(in.rect("inputExtent"), direction);
    double back = way.begin - width + (way.length() + width) * time(in) / done;
    // In widths from the back of the bar.
    Along place{{back * direction.x, back * direction.y}, direction, width};
    Image both = sum(weighted(image, "copy", place, [](float u) SIMD_INLINE { return simd::unit(u); }),
                     weighted(target, "copy", place, [](float u) SIMD_INLINE { return 1 - simd::unit(u); }));
    Color color = in.color("inputColor");
    auto part = [=, opacity = in.number("inputOpacity", 0, 3)](double v) {
        return static_cast<float>(v * color.a * opacity);
    };
    Pixel full{part(color.r), part(color.g), part(color.b), part(1)};
    Image light = eachPlace("copy light", both->extent(), place, [=](float u) SIMD_INLINE {
        u = simd::unit(u);
        float w = simd::min(u * (1 / brightest), (1 - u) * (1 / (1 - brightest)));
        return Pixel{w * full.r, w * full.g, w * full.b, w * full.a};
    });
    return sum(light, both);
}

const Registrar filter{
    {"CICopyMachineTransition",
     "Copy Machine",
     "Moves a bar of light over a picture and leaves another one behind it, as a copier does.",
     fitted("a bar of added light", 0.04),
     "10.4",
     categories("Transition Video StillImage BuiltIn"),
     {imageInput(), targetInput(), vectorInput("inputExtent", "Extent", "Rectangle", {0, 0, 300, 300}),
      colorInput("inputColor", "Color", "OpaqueColor", {0.6, 1, 0.8, 1}), timeInput(),
      numberInput("inputAngle", "Angle", "Angle",
                  {.value = 0, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 2 * pi}),
      numberInput("inputWidth", "Width", "Distance",
                  {.value = 200, .identity = 200, .min = 0.1, .sliderMin = 0.1, .sliderMax = 500}),
      numberInput("inputOpacity", "Opacity", "Scalar",
                  {.value = 1.3, .identity = 1.3, .min = 0, .sliderMin = 0, .sliderMax = 3})},
     build}};

} // namespace

} // namespace engine::transitions
