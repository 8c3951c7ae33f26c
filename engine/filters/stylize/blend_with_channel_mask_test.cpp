// CIBlendWithRedMask and CIBlendWithBlueMask, against their definition.
#include "reference.h"

using namespace reference;

namespace {

void expectMixedBy(const char* name, int component) {
    Picture image = noise(40, 30, 39), background = noise(50, 20, 40), mask = noise(30, 40, 41);
    Picture expected = filled(0, 0, 60, 45, [&](int x, int y) {
        Pixel a = image.get(x, y), b = background.get(x, y), out;
        double t = mask.get(x, y)[component];
        for (int c = 0; c < 4; ++c) out[c] = t * a[c] + (1 - t) * b[c];
        return out;
    });
    Image result = filter(name, {{"inputImage", imageOf(image)},
                                 {"inputBackgroundImage", imageOf(background)},
                                 {"inputMaskImage", imageOf(mask)}});
    EXPECT_EQ(result->extent(), (Rect{0, 0, 50, 30}));
    EXPECT_LT(error(result, expected), floatError);
    EXPECT_EQ(filter(name, {{"inputImage", imageOf(image)}}), nullptr);
}

} // namespace

TEST(CIBlendWithRedMask, MixesByRed) { expectMixedBy("CIBlendWithRedMask", 0); }
TEST(CIBlendWithBlueMask, MixesByBlue) { expectMixedBy("CIBlendWithBlueMask", 2); }
