// Ways from one picture to another.
#include "registry.h"

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
    /// Of a copier the picture turns at once, under the light in the middle of the bar. (Core Image does not
    /// tell its own formula for that.)
    bool copies;

    explicit Bar(const Inputs& in, bool copies = false)
        : dx(std::cos(in.number("inputAngle", -1e6, 1e6))), dy(std::sin(in.number("inputAngle", -1e6, 1e6))),
          width(in.number("inputWidth", 0.1, 1e6)), opacity(in.number("inputOpacity", 0, copies ? 3 : 1)),
          copies(copies) {
        Rect extent = in.rect("inputExtent");
        Affine turned{dx, 0, dy, 1, 0, 0}; // x' is the way along the direction
        Rect way = turned.apply(extent);
        front = way.x0 + in.number("inputTime", 0, 1) * (way.width() + width);
    }

    /// How much of the target there is at pixels, and how much of the colour over both.
    void amounts(int x, int y, int n, float* target, float* color) const {
        float from = static_cast<float>((front - (x + 0.5) * dx - (y + 0.5) * dy) / width);
        float step = static_cast<float>(-dx / width), most = static_cast<float>(opacity);
        float turn = copies ? static_cast<float>(std::max(width, 1.0)) : 1;
        simd::run([=]() SIMD_INLINE {
            SIMD_LOOP
            for (int i = 0; i < n; ++i) {
                float t = simd::unit(from + static_cast<float>(i) * step);
                target[i] = simd::unit((t - 0.5f) * turn + 0.5f);
                color[i] = simd::min(most * (1 - simd::abs(2 * t - 1)), 1);
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

template <bool copies>
Image swipe(const Inputs& in) {
    Image image = in.image("inputImage");
    if (!image) return nullptr;
    Bar bar(in, copies);
    Image both = sum(swept(image, bar, false), swept(in.image("inputTargetImage"), bar, true));
    return bar.opacity > 0 ? sum(colored(in.color("inputColor"), both->extent(), bar), both) : both;
}

/// Bars along a direction that slide along it, each later than the one before by an offset. (Core Image does
/// not tell its own formula.)
class Sliding : public Warp {
  public:
    Sliding(const Inputs& in, const Rect& extent)
        : dx_(std::cos(in.number("inputAngle", -1e6, 1e6))),
          dy_(std::sin(in.number("inputAngle", -1e6, 1e6))), width_(in.number("inputWidth", 2, 1e6)),
          offset_(in.number("inputBarOffset", 1, 1e6)) {
        Rect turned = Affine{dx_, -dy_, dy_, dx_, 0, 0}.apply(extent);
        first_ = turned.y0;
        double later = (std::ceil(turned.height() / width_) - 1) * offset_;
        way_ = in.number("inputTime", 0, 1) * (turned.width() + later);
    }

    std::string name() const override { return "bars"; }
    Rect extent(const Rect& source) const override { return moved(source, way_); }
    Rect region(const Rect& area) const override { return moved(area, -way_); }
    void displace(int x, int y, int n, float* dx, float* dy) const override {
        for (int i = 0; i < n; ++i) {
            double bar = std::floor(((y + 0.5) * dx_ - (x + i + 0.5) * dy_ - first_) / width_);
            double slid = std::clamp(way_ - bar * offset_, 0.0, way_);
            dx[i] = static_cast<float>(-slid * dx_);
            dy[i] = static_cast<float>(-slid * dy_);
        }
    }

  private:
    Rect moved(const Rect& r, double way) const {
        return r.unite({r.x0 + way * dx_, r.y0 + way * dy_, r.x1 + way * dx_, r.y1 + way * dy_});
    }

    double dx_, dy_, width_, offset_, first_, way_;
};

/// An endless picture has no end to slide to; it stays until the time is over.
Image barsSwipe(const Inputs& in) {
    Image image = in.image("inputImage"), target = in.image("inputTargetImage");
    if (!image) return nullptr;
    if (image->extent().isInfinite())
        return in.number("inputTime", 0, 1) < 1 ? image : target ? target : empty();
    Rect extent = target ? image->extent().unite(target->extent()) : image->extent();
    Image sliding = warp(image, std::make_shared<Sliding>(in, image->extent()));
    return crop(composite(sliding, target), extent);
}

/// How much of a picture is left where the mask has this light: from all to nothing within a twentieth of the
/// mask's range.
SIMD_INLINE inline float left(float light, float time) {
    constexpr float soft = 0.05f;
    return 1 - simd::unit((light - 1 + time * (1 + soft)) / soft);
}

SIMD_INLINE inline float lightOf(float r, float g, float b) {
    return simd::linearToSrgb(simd::unit(0.2126f * r + 0.7152f * g + 0.0722f * b));
}

/// (Core Image does not tell its own formula.)
Image disintegrate(const Inputs& in) {
    Image image = in.image("inputImage"), target = in.image("inputTargetImage"),
          mask = in.image("inputMaskImage");
    if (!image) return nullptr;
    float time = static_cast<float>(in.number("inputTime", 0, 1));
    float density = static_cast<float>(in.number("inputShadowDensity", 0, 1));
    Point offset = in.point("inputShadowOffset");
    Image remains = pointStep(mask, "remains", [=](const RenderContext&) {
        return [=](const Span& s, int, int, int n) {
            simd::run([=, r = s.plane[0], g = s.plane[1], b = s.plane[2], a = s.plane[3]]() SIMD_INLINE {
                SIMD_LOOP
                for (int i = 0; i < n; ++i) a[i] = left(lightOf(r[i], g[i], b[i]), time);
            });
        };
    });
    Image shadow = transform(gaussian(remains, in.number("inputShadowRadius", 0, 1000)),
                             Affine::translation(offset.x, offset.y));
    Rect extent = target ? image->extent().unite(target->extent()) : image->extent();
    return combine("disintegrate", extent, {image, target, mask, shadow}, [=](const Span* pixels, int n) {
        for (int c = 0; c < 4; ++c)
            simd::run([=, p = pixels[0].plane[c], t = pixels[1].plane[c], r = pixels[2].plane[0],
                       g = pixels[2].plane[1], b = pixels[2].plane[2], s = pixels[3].plane[3],
                       dark = c < 3 ? density : 0]() SIMD_INLINE {
                SIMD_LOOP
                for (int i = 0; i < n; ++i)
                    p[i] = simd::mix(t[i] * (1 - dark * simd::unit(s[i])), p[i],
                                     left(lightOf(r[i], g[i], b[i]), time));
            });
    });
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
     swipe<false>}};

const Registrar copyMachines{
    {"CICopyMachineTransition",
     "Copy Machine",
     "Moves a bar of light over a picture and leaves another one behind it, as a copier does.",
     "10.4",
     categories("Transition Video StillImage BuiltIn"),
     {imageInput(), imageInput("inputTargetImage", "Target Image"),
      vectorInput("inputExtent", "Extent", "Rectangle", {0, 0, 300, 300}),
      colorInput("inputColor", "Color", "OpaqueColor", {0.6, 1, 0.8, 1}), timeInput(),
      numberInput("inputAngle", "Angle", "Angle",
                  {.value = 0, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 6.283185307179586}),
      numberInput("inputWidth", "Width", "Distance",
                  {.value = 200, .identity = 200, .min = 0.1, .sliderMin = 0.1, .sliderMax = 500}),
      numberInput("inputOpacity", "Opacity", "Scalar",
                  {.value = 1.3, .identity = 1.3, .min = 0, .sliderMin = 0, .sliderMax = 3})},
     swipe<true>}};

const Registrar barsSwipes{
    {"CIBarsSwipeTransition",
     "Bars Swipe Transition",
     "Cuts a picture into bars, which slide away one after the other.",
     "10.5",
     categories("Transition Video StillImage BuiltIn"),
     {imageInput(), imageInput("inputTargetImage", "Target Image"),
      numberInput(
          "inputAngle", "Angle", "Angle",
          {.value = 3.141592653589793, .identity = 0, .sliderMin = 0, .sliderMax = 6.283185307179586}),
      numberInput("inputWidth", "Width", "Distance",
                  {.value = 30, .min = 2, .sliderMin = 2, .sliderMax = 300}),
      numberInput("inputBarOffset", "Bar Offset", "Scalar",
                  {.value = 10, .min = 1, .sliderMin = 1, .sliderMax = 100}),
      timeInput()},
     barsSwipe}};

const Registrar disintegrations{
    {"CIDisintegrateWithMaskTransition",
     "Disintegrate With Mask",
     "Takes a picture away where a mask is bright, then where it is darker; what is left casts a shadow.",
     "10.4",
     categories("Transition Video StillImage BuiltIn"),
     {imageInput(), imageInput("inputTargetImage", "Target Image"),
      imageInput("inputMaskImage", "Mask Image"), timeInput(),
      numberInput("inputShadowRadius", "Shadow Radius", "Distance",
                  {.value = 8, .min = 0, .sliderMin = 0, .sliderMax = 50}),
      numberInput("inputShadowDensity", "Shadow Density", "Scalar",
                  {.value = 0.65, .identity = 0, .min = 0, .max = 1, .sliderMin = 0, .sliderMax = 1}),
      vectorInput("inputShadowOffset", "Shadow Offset", "Offset", {0, -10}, Numbers{0, 0})},
     disintegrate}};

} // namespace

} // namespace engine
