// Ways from one picture to another.
#include "../src/registry.h"

#include <color/vecmath.h>

#include <cmath>

namespace engine {

namespace {

namespace simd = color::simd;

/// (1 - time) of the one and time of the other, as light.
Image dissolve(const Inputs& in) {
    Image image = in.image("inputImage");
    double time = in.number("inputTime", 0, 1);
    return image ? sum(weighted(image, 1 - time), weighted(in.image("inputTargetImage"), time)) : nullptr;
}

/// A bar, `width` wide, that moves over the extent in a direction, from just before it to just behind. Across
/// the bar the picture turns into the target, and the colour comes and goes; fitted to pictures of Core
/// Image.
struct Bar {
    double dx, dy, front, width, opacity;

    explicit Bar(const Inputs& in)
        : dx(std::cos(in.number("inputAngle", -1e6, 1e6))), dy(std::sin(in.number("inputAngle", -1e6, 1e6))),
          width(in.number("inputWidth", 0.1, 1e6)), opacity(in.number("inputOpacity", 0, 1)) {
        Rect extent = in.rect("inputExtent");
        Affine turned{dx, 0, dy, 1, 0, 0}; // x' is the way along the direction
        Rect way = turned.apply(extent);
        front = way.x0 + in.number("inputTime", 0, 1) * (way.width() + width);
    }

    /// How much of the target there is at pixels, and how much of the colour over both.
    void amounts(int x, int y, int n, float* target, float* color) const {
        float from = static_cast<float>((front - (x + 0.5) * dx - (y + 0.5) * dy) / width);
        float step = static_cast<float>(-dx / width), most = static_cast<float>(opacity);
        simd::run([=]() SIMD_INLINE {
            SIMD_LOOP
            for (int i = 0; i < n; ++i) {
                float t = simd::unit(from + static_cast<float>(i) * step);
                target[i] = t;
                color[i] = most * (1 - simd::abs(2 * t - 1));
            }
        });
    }
};

/// One of the two pictures, as much as shows of it.
Image swept(const Image& image, const Bar& bar, bool isTarget) {
    return weighted(image, "swipe", [=](int x, int y, int n, float* weights) {
        float color[maxSpan];
        bar.amounts(x, y, n, weights, color);
        for (int i = 0; i < n; ++i) weights[i] = (isTarget ? weights[i] : 1 - weights[i]) * (1 - color[i]);
    });
}

/// The colour over both.
Image colored(const Color& color, const Rect& extent, const Bar& bar) {
    return weighted(crop(constant(color), extent), "swipe", [=](int x, int y, int n, float* weights) {
        float target[maxSpan];
        bar.amounts(x, y, n, target, weights);
    });
}

Image swipe(const Inputs& in) {
    Image image = in.image("inputImage");
    if (!image) return nullptr;
    Bar bar(in);
    Image both = sum(swept(image, bar, false), swept(in.image("inputTargetImage"), bar, true));
    return bar.opacity > 0 ? sum(colored(in.color("inputColor"), both->extent(), bar), both) : both;
}

InputInfo timeInput() {
    return numberInput("inputTime", "Time", "Time",
                       {.value = 0, .identity = 0, .min = 0, .max = 1, .sliderMin = 0, .sliderMax = 1});
}

const Registrar dissolves{{"CIDissolveTransition",
                           "Dissolve",
                           "Fades from one picture to another.",
                           "10.4",
                           categories("Transition Video StillImage Interlaced NonSquarePixels BuiltIn"),
                           {imageInput(), imageInput("inputTargetImage", "Target Image"), timeInput()},
                           dissolve}};

const Registrar swipes{
    {"CISwipeTransition",
     "Swipe",
     "Moves a coloured bar over a picture and leaves another one behind it.",
     "10.4",
     categories("Transition Video StillImage BuiltIn"),
     {imageInput(), imageInput("inputTargetImage", "Target Image"),
      vectorInput("inputExtent", "Extent", "Rectangle", {0, 0, 300, 300}),
      colorInput("inputColor", "Color", "OpaqueColor", {1, 1, 1, 1}), timeInput(),
      numberInput(
          "inputAngle", "Angle", "Angle",
          {.value = 0, .identity = 0, .sliderMin = -3.141592653589793, .sliderMax = 3.141592653589793}),
      numberInput("inputWidth", "Width", "Distance",
                  {.value = 300, .min = 0.1, .sliderMin = 0.1, .sliderMax = 800}),
      numberInput("inputOpacity", "Opacity", "Scalar",
                  {.value = 0, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 1})},
     swipe}};

} // namespace

} // namespace engine
