// CIStripesGenerator: upright stripes in two colours.
#include "square_wave.h"

namespace engine::generators {

namespace {

/// One square wave: the second colour is to the right of the centre, as in pictures of Core Image.
struct Stripes {
    SquareWave across;

    struct Row {
        SquareWave across;
        SquareWave::Places places;
        SIMD_INLINE float at(int i) const { return across.at(places.at(i)); }
    };
    Row row(int x, int) const { return {across, across.places(x)}; }
};

Image build(const Inputs& in) {
    return twoColors("stripes", in, Stripes{{in, in.point("inputCenter").x}},
                     [](float wave) SIMD_INLINE { return 0.5f - 0.5f * wave; });
}

const Registrar filter{{"CIStripesGenerator", "Stripes", "Makes a pattern of upright stripes in two colours.",
                        fitted("a square wave, the second colour to the right of the centre", 0), "10.4",
                        categories("Generator Video StillImage BuiltIn"), waveInputs(), build}};

} // namespace

} // namespace engine::generators
