// CIVibrance, against what Core Image's pictures fit.
#include "reference.h"

using namespace reference;

namespace {

/// How much of the distance from the mean of its components a colour keeps.
double kept(const Pixel& p, double amount) {
    Image one = imageOf(filled(0, 0, 1, 1, [&](int, int) { return p; }));
    Pixel out =
        rendered(filter("CIVibrance", {{"inputImage", one}, {"inputAmount", amount}}), 0, 0, 1, 1).at(0, 0);
    double before = (p[0] + p[1] + p[2]) / 3, after = (out[0] + out[1] + out[2]) / 3;
    EXPECT_NEAR(after, before, 1e-5);
    EXPECT_NEAR(out[3], p[3], 1e-6);
    double gain = (out[1] - before) / (p[1] - before);
    for (int c : {0, 2}) EXPECT_NEAR(out[c] - before, gain * (p[c] - before), 1e-5);
    return gain;
}

} // namespace

TEST(CIVibrance, LeavesVividGreensLeast) {
    EXPECT_NEAR(kept({0, 1, 0, 1}, -1), 0.15, 1e-4);
    EXPECT_NEAR(kept({0.48, 0.64, 0.48, 1}, -1), 0.15 + 0.4 * std::sqrt(0.75), 1e-4);
    EXPECT_NEAR(kept({0.18, 0.32, 0.08, 0.5}, -1), 0.35, 1e-4); // a saturation of three quarters
    EXPECT_NEAR(kept({0, 1, 0, 1}, -0.5), 0.575, 1e-4) << "half of the change";
}

TEST(CIVibrance, LeavesRedsAlike) {
    for (double green : {0.0, 0.3, 0.6}) {
        double gain = kept({0.8, green, green, 1}, -1);
        EXPECT_GT(gain, 0.16);
        EXPECT_LT(gain, 0.22);
    }
}

TEST(CIVibrance, GivesDullColoursMost) {
    EXPECT_GT(kept({0.5, 0.6, 0.5, 1}, 1), kept({0.1, 0.9, 0.1, 1}, 1));
    EXPECT_GT(kept({0.1, 0.9, 0.1, 1}, 1), kept({0.9, 0.2, 0.2, 1}, 1)) << "reds change least";
    EXPECT_GT(kept({0.9, 0.2, 0.2, 1}, 1), 1);
}

TEST(CIVibrance, StandardLeavesThePicture) {
    Image image = imageOf(noise(8, 8, 33));
    EXPECT_EQ(filter("CIVibrance", {{"inputImage", image}}), image);
}
