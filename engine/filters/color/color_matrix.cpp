// CIColorMatrix: components as weighted sums of components.
#include "filter.h"

namespace engine {

/// Each result is the dot product of a vector with the straight colour, plus the bias: Apple's documented
/// formula.
static Image build(const Inputs& in) {
    const char* keys[] = {"inputRVector", "inputGVector", "inputBVector", "inputAVector"};
    Numbers bias = in.vector("inputBiasVector", 4);
    ColorMatrix m;
    for (int i = 0; i < 4; ++i) {
        Numbers row = in.vector(keys[i], 4);
        std::copy(row.begin(), row.end(), m[i].begin());
        m[i][4] = bias[i];
    }
    return colorMatrix(in.image("inputImage"), m);
}

static const Registrar filter{
    {"CIColorMatrix",
     "Color Matrix",
     "Makes each component a weighted sum of all components plus a constant.",
     publicDefinition("Apple's documented formula"),
     "10.4",
     categories("ColorAdjustment Video StillImage Interlaced NonSquarePixels BuiltIn"),
     {imageInput(), vectorInput("inputRVector", "Red Vector", "", {1, 0, 0, 0}, Numbers{1, 0, 0, 0}),
      vectorInput("inputGVector", "Green Vector", "", {0, 1, 0, 0}, Numbers{0, 1, 0, 0}),
      vectorInput("inputBVector", "Blue Vector", "", {0, 0, 1, 0}, Numbers{0, 0, 1, 0}),
      vectorInput("inputAVector", "Alpha Vector", "", {0, 0, 0, 1}, Numbers{0, 0, 0, 1}),
      vectorInput("inputBiasVector", "Bias Vector", "", {0, 0, 0, 0}, Numbers{0, 0, 0, 0})},
     build}};

} // namespace engine
