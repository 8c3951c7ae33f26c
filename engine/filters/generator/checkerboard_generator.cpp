// CICheckerboardGenerator: squares in two colours.
#include "square_wave.h"

namespace engine::generators {

namespace {

/// Two square waves, one along each axis.
struct Waves {
    SquareWave across, up;

    struct Row {
        SquareWave across;
        SquareWave::Places places;
        float up;
        SIMD_INLINE Position at(int i) const { return {across.at(places.at(i)), up}; }
    };
    Row row(int x, int y) const { return {across, across.places(x), up.at(up.place(y))}; }
};

/// The product of the waves.
Image build(const Inputs& in) {
    Point centre = in.point("inputCenter");
    return twoColors("checkerboard", in, Waves{{in, centre.x}, {in, centre.y}},
                     [](Position wave) SIMD_INLINE { return 0.5f - 0.5f * wave.y * wave.x; });
}

const Registrar filter{{"CICheckerboardGenerator", "Checkerboard",
                        "Makes a pattern of squares in two colours.",
                        ourOwn("the product of two square waves; the sharpness is ours"), "10.4",
                        categories("Generator Video StillImage BuiltIn"), waveInputs(), build}};

} // namespace

} // namespace engine::generators
