// Whole renders: independent of tiles, threads and instruction sets.
#include "recipes.h"

using namespace reference;

TEST(Render, TilesDoNotShow) {
    Image image = complicated(noise(130, 110, 17));
    setTileSize(4096);
    Picture whole = rendered(image, -40, -40, 200, 200);
    setTileSize(33);
    Picture tiled = rendered(image, -40, -40, 200, 200);
    setTileSize(0);
    // Places are counted in float from another corner, so that they round differently.
    EXPECT_LT(difference(whole, tiled), 1e-3);
    EXPECT_GT(whole.get(50, 50)[3], 0.1);
}

TEST(Render, BothInstructionSetsAgree) {
    InstructionSet best = instructionSet();
    Image image = complicated(noise(130, 110, 18));
    ASSERT_TRUE(setInstructionSet(InstructionSet::sse2));
    EXPECT_EQ(instructionSet(), InstructionSet::sse2);
    Picture plain = rendered(image, -40, -40, 200, 200);
    setInstructionSet(best);
    EXPECT_LT(difference(plain, rendered(image, -40, -40, 200, 200)), 1e-3);
}

TEST(Render, ThreadsDoNotShow) {
    Image image = complicated(noise(130, 110, 19));
    setTileSize(32);
    setThreadCount(1);
    Picture one = rendered(image, -40, -40, 200, 200);
    setThreadCount(5);
    Picture five = rendered(image, -40, -40, 200, 200);
    setThreadCount(0);
    setTileSize(0);
    EXPECT_EQ(difference(one, five), 0);
}

namespace {

/// Its input, counting how often it is computed.
class Counted : public Node {
  public:
    explicit Counted(const Image& input) : Node(input->extent(), {input}) {}
    std::string name() const override { return "counted"; }
    std::shared_ptr<Evaluator> prepare(const IntRect& area, RenderContext& context) const override {
        ++times;
        return inputs()[0]->prepare(area, context);
    }
    mutable std::atomic<int> times{0};
};

} // namespace

TEST(Render, WhatIsReadInTwoSizesIsComputedOnce) {
    auto counted = std::make_shared<Counted>(imageOf(noise(200, 200, 20)));
    Image image = counted;
    for (int depth = 0; depth < 8; ++depth) {
        Image blurred = filter("CIGaussianBlur", with(image, "inputRadius", 2 + depth % 3));
        image = filter("CIScreenBlendMode", {{"inputImage", blurred}, {"inputBackgroundImage", image}});
    }
    setTileSize(4096);
    setThreadCount(1);
    rendered(image, 90, 90, 20, 20); // far from the edges, which would make all sizes one
    setThreadCount(0);
    setTileSize(0);
    EXPECT_EQ(counted->times, 1);
}

TEST(Render, BlendsOverTheTargetAndLeavesTheRest) {
    std::vector<std::uint8_t> out(4 * 8 * 8, 100);
    PixelLayout layout{8, 8, Format::RGBA8, Alpha::opaque, nullptr};
    Options options{.blend = true, .working = nullptr, .colorManaged = false, .software = true};
    render(constant({1, 0, 0, 0.5}), {0, 0, 4, 4}, {layout, out.data(), 32}, {2, 1, 6, 5}, options);
    auto at = [&](int x, int y, int c) { return int(out[4 * ((7 - y) * 8 + x) + c]); };
    EXPECT_EQ(at(1, 1, 0), 100);
    EXPECT_EQ(at(2, 5, 0), 100);
    EXPECT_NEAR(at(2, 1, 0), 178, 1); // (255 + 100) / 2
    EXPECT_NEAR(at(5, 4, 1), 50, 1);
    EXPECT_EQ(at(6, 4, 1), 100);
}

TEST(Render, RefusesTargetsThatCannotBe) {
    std::uint8_t pixels[64] = {};
    PixelLayout layout{4, 4};
    Image image = bitmap(layout, pixels, 16, nullptr);
    EXPECT_THROW(render(image, Rect::infinite(), {layout, pixels, 16}, {0, 0, 4, 4}), std::invalid_argument);
    EXPECT_THROW(render(image, {0, 0, 4, 4}, {layout, nullptr, 16}, {0, 0, 4, 4}), std::invalid_argument);
}
