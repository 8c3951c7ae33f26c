// CISepiaTone, against what Core Image's pictures fit.
#include "reference.h"

using namespace reference;

namespace {

Pixel brown(const Pixel& p, double intensity) {
    Image one = imageOf(filled(0, 0, 1, 1, [&](int, int) { return p; }));
    return rendered(filter("CISepiaTone", {{"inputImage", one}, {"inputIntensity", intensity}}), 0, 0, 1, 1)
        .at(0, 0);
}

} // namespace

TEST(CISepiaTone, MakesPowersOfLuminance) {
    Pixel white = brown({1, 1, 1, 1}, 1), green = brown({0, 1, 0, 1}, 1),
          gray = brown({0.25, 0.25, 0.25, 1}, 1);
    for (int c = 0; c < 3; ++c) {
        // Powers 0.79, 1.10 and 1.93 of luminances 1, 0.7154 and 0.25.
        EXPECT_NEAR(white[c], (std::array{1.0, 0.99, 0.914}[c]), 1e-4);
        EXPECT_NEAR(green[c], (std::array{0.7675, 0.6849, 0.4789}[c]), 1e-4);
        EXPECT_NEAR(gray[c], (std::array{0.3345, 0.2155, 0.0629}[c]), 1e-4);
        EXPECT_NEAR(brown({0, 0, 0, 1}, 1)[c], 0, 1e-6);
    }
}

TEST(CISepiaTone, MixesByTheIntensity) {
    Pixel whole = brown({0.4, 0.1, 0.2, 0.5}, 1), half = brown({0.4, 0.1, 0.2, 0.5}, 0.5);
    for (int c = 0; c < 3; ++c) EXPECT_NEAR(half[c], 0.5 * (whole[c] + std::array{0.4, 0.1, 0.2}[c]), 1e-5);
    EXPECT_NEAR(half[3], 0.5, 1e-6);
    EXPECT_NEAR(brown({0.4, 0.1, 0.2, 0.5}, 0)[0], 0.4, 1e-6);
}
