// CICMYKHalftone: pictures printed in four inks.
#include "screen.h"

namespace engine::halftone {

namespace {

/// Four screens of dots, turned against each other as printers do. The part of a colour that is gray and
/// darker than 1 - UCR goes to black, as far as GCR says; the other inks give what black leaves. (Our own: no
/// picture is known. The dots are those of CIDotScreen.)
Image build(const Inputs& in) {
    std::array<Screen, 4> screens{Screen(in, pi / 12), Screen(in, 5 * pi / 12), Screen(in, 0),
                                  Screen(in, pi / 4)};
    float replaced = static_cast<float>(in.number("inputGCR", 0, 1)),
          under = static_cast<float>(in.number("inputUCR", 0, 1));
    return pointStep(in.image("inputImage"), "cmyk halftone", [=](const RenderContext&) {
        return [=](const Span& s, int x, int y, int n) {
            alignas(32) float black[maxSpan];
            eachIndex(n, [=, black = black](int i) SIMD_INLINE {
                Pixel p = load(s, i);
                float gray = 1 - simd::unit(largest(p) * unpremultiply(p.a));
                black[i] = replaced * simd::max(gray - 1 + under, 0) / simd::max(under, 1e-6f);
            });
            SlantedRow dots = screens[3].row(x, y);
            for (int c = 0; c < 3; ++c)
                eachIndex(n, [=, black = black, v = s.plane[c], a = s.plane[3], ink = screens[c].row(x, y),
                              soft = screens[c].soft](int i) SIMD_INLINE {
                    float left = 1 - black[i];
                    float light = simd::unit(v[i] / simd::max(a[i] * left, 1e-6f));
                    float white = Screen::inkless(light, Dots::at(ink.at(i)), soft);
                    v[i] = a[i] * (white * Screen::inkless(left, Dots::at(dots.at(i)), soft));
                });
        };
    });
}

const Registrar filter{
    {"CICMYKHalftone",
     "CMYK Halftone",
     "Prints a picture with dots in cyan, magenta, yellow and black.",
     ourOwn("four screens like CIDotScreen's; gray goes to black as UCR and GCR say"),
     "10.4",
     screenCategories(),
     {imageInput(), centerInput(),
      numberInput("inputWidth", "Width", "Distance",
                  {.value = 6, .identity = 6, .min = -2, .sliderMin = 2, .sliderMax = 100}),
      angleInput(),
      numberInput("inputSharpness", "Sharpness", "Distance",
                  {.value = 0.7, .min = 0, .sliderMin = 0, .sliderMax = 1}),
      numberInput("inputGCR", "Gray Component Replacement", "Scalar",
                  {.value = 1, .identity = 1, .min = 0, .sliderMin = 0, .sliderMax = 1}),
      numberInput("inputUCR", "Under Color Removal", "Scalar",
                  {.value = 0.5, .identity = 0.5, .min = 0, .sliderMin = 0, .sliderMax = 1})},
     build}};

} // namespace

} // namespace engine::halftone
