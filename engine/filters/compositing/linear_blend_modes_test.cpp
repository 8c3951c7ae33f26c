// The blend modes that add, subtract and divide, by values worked out by hand.
#include "reference.h"

using namespace reference;

namespace {

Pixel blended(const char* name, const Pixel& above, const Pixel& below) {
    auto one = [](const Pixel& p) { return imageOf(filled(0, 0, 1, 1, [=](int, int) { return p; })); };
    Image image = filter(name, {{"inputImage", one(above)}, {"inputBackgroundImage", one(below)}});
    return rendered(image, 0, 0, 1, 1).at(0, 0);
}

void expectColor(const char* name, const std::array<double, 3>& expected) {
    Pixel out = blended(name, {0.25, 0.5, 0.9, 1}, {0.5, 0.75, 0.2, 1});
    for (int c = 0; c < 3; ++c) EXPECT_NEAR(out[c], expected[c], 1e-6) << name << c;
    EXPECT_NEAR(out[3], 1, 1e-6);
    // Where one of the two is clear the other shows.
    EXPECT_NEAR(blended(name, {}, {0.1, 0.2, 0.3, 0.5})[1], 0.2, 1e-6) << name;
    EXPECT_NEAR(blended(name, {0.1, 0.2, 0.3, 0.5}, {})[2], 0.3, 1e-6) << name;
    // Half over half: a quarter of each alone, a quarter of both.
    Pixel half = blended(name, {0.125, 0.25, 0.45, 0.5}, {0.25, 0.375, 0.1, 0.5});
    EXPECT_NEAR(half[0], 0.25 * (0.25 + 0.5 + expected[0]), 1e-6) << name;
    EXPECT_NEAR(half[3], 0.75, 1e-6) << name;
}

} // namespace

TEST(CILinearBurnBlendMode, AddsAndSubtractsWhite) { expectColor("CILinearBurnBlendMode", {0, 0.25, 0.1}); }

TEST(CILinearDodgeBlendMode, Adds) { expectColor("CILinearDodgeBlendMode", {0.75, 1, 1}); }

TEST(CIPinLightBlendMode, ReplacesTheMuchDarkerAndLighter) {
    expectColor("CIPinLightBlendMode", {0.5, 0.75, 0.8});
    EXPECT_NEAR(blended("CIPinLightBlendMode", {0.1, 0, 0, 1}, {0.6, 0, 0, 1})[0], 0.2, 1e-6);
}

TEST(CISubtractBlendMode, SubtractsFromTheBackground) { expectColor("CISubtractBlendMode", {0.25, 0.25, 0}); }

TEST(CIDivideBlendMode, DividesTheBackground) {
    expectColor("CIDivideBlendMode", {1, 1, 0.2 / 0.9});
    EXPECT_NEAR(blended("CIDivideBlendMode", {0, 0, 0, 1}, {0.5, 0, 0, 1})[0], 1, 1e-6);
    EXPECT_NEAR(blended("CIDivideBlendMode", {0, 0, 0, 1}, {0.5, 0, 0, 1})[1], 0, 1e-6);
}
