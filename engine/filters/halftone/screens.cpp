// CICircularScreen, CIDotScreen, CIHatchedScreen, CILineScreen: pictures printed in black, with gray as more
// or less of the area.
#include "screen.h"

namespace engine::halftone {

namespace {

// The patterns, of a place in units of the width. (Fitted to Core Image's pictures: mean residuals of 0.08 of
// 255 at most.)

/// Lines lie across the direction of the angle.
struct Lines {
    SIMD_INLINE static float at(Position p) { return triangle(p.x); }
};

/// A second set of lines crosses the first where the picture is brighter.
struct Hatches {
    SIMD_INLINE static float at(Position p) { return simd::min(triangle(p.x), 0.5f + 0.5f * triangle(p.y)); }
};

struct Circles {
    SIMD_INLINE static float at(Position p) { return triangle(simd::sqrt(p.x * p.x + p.y * p.y)); }
};

template <class Pattern>
struct Screened : Screen {
    SlantedRow row(int x, int y) const { return Screen::row(x, y, !std::is_same_v<Pattern, Circles>); }
};

/// In gray, by the linear luminance of the straight colour.
template <class Pattern>
Image build(const Inputs& in) {
    Screened<Pattern> screen{Screen(in)};
    return eachPixel(in.image("inputImage"), "screen", screen,
                     [soft = screen.soft](Pixel p, Position at) SIMD_INLINE {
                         float light = simd::unit(luminance(p) * unpremultiply(p.a));
                         return gray(p.a * Screen::inkless(light, Pattern::at(at), soft), p.a);
                     });
}

template <class Pattern>
FilterInfo info(std::string name, std::string displayName, std::string description, Source source,
                bool turns = true) {
    std::vector<InputInfo> inputs{
        imageInput(), centerInput(),
        numberInput("inputWidth", "Width", "Distance",
                    {.value = 6, .min = 1, .sliderMin = 2, .sliderMax = 50}),
        numberInput("inputSharpness", "Sharpness", "Scalar",
                    {.value = 0.7, .min = 0, .max = 1, .sliderMin = 0, .sliderMax = 1})};
    if (turns) inputs.push_back(angleInput());
    return {std::move(name), std::move(displayName), std::move(description), source,
            "10.4",          screenCategories(),     std::move(inputs),      build<Pattern>};
}

const Registrar filters[] = {
    Registrar(info<Circles>("CICircularScreen", "Circular Screen",
                            "Prints a picture in black with circles around a centre.",
                            fitted("a triangle wave of the distance", 0.08), false)),
    Registrar(info<Dots>("CIDotScreen", "Dot Screen", "Prints a picture in black with dots.",
                         fitted("two sines", 0.08))),
    Registrar(info<Hatches>("CIHatchedScreen", "Hatched Screen",
                            "Prints a picture in black with lines that cross.",
                            fitted("two triangle waves, the second at half height", 0.08))),
    Registrar(info<Lines>("CILineScreen", "Line Screen", "Prints a picture in black with parallel lines.",
                          fitted("a triangle wave", 0.08))),
};

} // namespace

} // namespace engine::halftone
