#include "../src/registry.h"

namespace engine {

/// The luminance tinted brown, mixed with the picture by the intensity. The three rows are the sepia
/// matrix in common use, whose rows sum to more than 1 for red and less for blue.
static Image build(const Inputs& in) {
    constexpr std::array<double, 9> sepia{0.393, 0.769, 0.189, 0.349, 0.686, 0.168, 0.272, 0.534, 0.131};
    double t = in.number("inputIntensity", -10, 10);
    std::array<double, 9> m;
    for (int i = 0; i < 9; ++i) m[i] = t * sepia[i] + (i % 4 == 0 ? 1 - t : 0);
    return colorMatrix(in.image("inputImage"), colorsOnly(m));
}

static const Registrar filter{
    {"CISepiaTone",
     "Sepia Tone",
     "Tints a picture brown like an old photograph.",
     "10.4",
     categories("ColorEffect Video Interlaced NonSquarePixels StillImage BuiltIn"),
     {imageInput(), numberInput("inputIntensity", "Intensity", "Scalar",
                                {.value = 1, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 1})},
     build}};

} // namespace engine
