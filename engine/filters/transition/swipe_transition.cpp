// CISwipeTransition: a coloured bar that leaves another picture behind.
#include "kernel.h"
#include "transition.h"

namespace engine::transitions {

namespace {

/// A bar as wide as the width moves over the extent, from just before it to just behind. Across it the
/// picture turns into the target, and its colour over both comes and goes, at most `inputOpacity` in the
/// middle.
Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    if (!image) return nullptr;
    double width = in.number("inputWidth", 0.1, 1e6), angle = in.number("inputAngle", -1e6, 1e6),
           opacity = in.number("inputOpacity", 0, 1);
    Point direction{std::cos(angle), std::sin(angle)};
    Stretch way = along(in.rect("inputExtent"), direction);
    double back = way.begin - width + (way.length() + width) * time(in);
    // In widths from the back of the bar.
    Along place{{back * direction.x, back * direction.y}, direction, width};
    auto colored = [most = static_cast<float>(opacity)](float u)
                       SIMD_INLINE { return most * (1 - simd::abs(2 * simd::unit(u) - 1)); };
    Image both = sum(weighted(image, "swipe", place,
                              [=](float u) SIMD_INLINE { return simd::unit(u) * (1 - colored(u)); }),
                     weighted(in.image("inputTargetImage"), "swipe", place,
                              [=](float u) SIMD_INLINE { return (1 - simd::unit(u)) * (1 - colored(u)); }));
    if (opacity == 0) return both;
    Image color = crop(constant(in.color("inputColor")), both->extent());
    return sum(weighted(color, "swipe", place, colored), both);
}

const Registrar filter{
    {"CISwipeTransition",
     "Swipe",
     "Moves a coloured bar over a picture and leaves another one behind it.",
     fitted("a bar across which one picture becomes the other", 0),
     "10.4",
     categories("Transition Video StillImage BuiltIn"),
     {imageInput(), targetInput(), vectorInput("inputExtent", "Extent", "Rectangle", {0, 0, 300, 300}),
      colorInput("inputColor", "Color", "OpaqueColor", {1, 1, 1, 1}), timeInput(),
      numberInput("inputAngle", "Angle", "Angle",
                  {.value = 0, .identity = 0, .sliderMin = -pi, .sliderMax = pi}),
      numberInput("inputWidth", "Width", "Distance",
                  {.value = 300, .min = 0.1, .sliderMin = 0.1, .sliderMax = 800}),
      numberInput("inputOpacity", "Opacity", "Scalar",
                  {.value = 0, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 1})},
     build}};

} // namespace

} // namespace engine::transitions
