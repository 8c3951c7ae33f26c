// A cascade of one feature, bitmaps that it knows, and files that are none.
#include "../src/bitmaps.h"
#include "../src/cascade.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <stdexcept>

namespace {

using vision::Cascade, vision::Grey;

/// A cascade with a window of 20 pixels, whose only tree asks how much brighter the left half is than the
/// right.
std::string text(const std::string& nodes = "0 -1 0 0.4", const std::string& rectangle = "0 0 20 20 -1.") {
    return "<cascade><height>20</height><width>20</width><stages><_><stageThreshold>0.5</stageThreshold>"
           "<weakClassifiers><_><internalNodes>" +
           nodes +
           "</internalNodes><leafValues>0 1</leafValues></_></weakClassifiers></_></stages>"
           "<features><_><rects><_>" +
           rectangle + "</_><_>0 0 10 20 2.</_></rects></_></features></cascade>";
}

class CascadeFile : public testing::Test {
  protected:
    void TearDown() override { std::remove(kName); }
    Cascade load(const std::string& text) {
        std::ofstream(kName) << text;
        return Cascade(kName);
    }
    static constexpr const char* kName = "cascade_test.xml";
};

/// Grey, with a square that is white on its left half and black on its right one.
Grey halves(int size, int x, int y, int side) {
    Grey grey{std::vector<std::uint8_t>(static_cast<std::size_t>(size * size), 128), size, size};
    for (int dy = 0; dy < side; ++dy)
        for (int dx = 0; dx < side; ++dx)
            grey.pixels[static_cast<std::size_t>((y + dy) * size + x + dx)] = dx < side / 2 ? 255 : 0;
    return grey;
}

TEST_F(CascadeFile, FindsWhatItLooksForInEverySize) {
    Cascade cascade = load(text());
    for (int side : {20, 46, 80}) {
        Grey grey = halves(128, 24, 30, side);
        auto found = cascade.find(grey.bitmap(), 20, 3);
        bool seen = false;
        for (const vision::Sighting& s : found)
            seen |= s.x + s.side / 2 > 24 + side * 0.3 && s.x + s.side / 2 < 24 + side * 0.7 &&
                    s.y + s.side / 2 > 30 && s.y + s.side / 2 < 30 + side;
        EXPECT_TRUE(seen) << side;
    }
}

TEST_F(CascadeFile, FindsNothingElse) {
    Cascade cascade = load(text());
    Grey flat{std::vector<std::uint8_t>(64 * 64, 90), 64, 64};
    EXPECT_TRUE(cascade.find(flat.bitmap(), 20, 1).empty());
    // Dark on the left.
    EXPECT_TRUE(cascade.find(vision::mirrored(halves(64, 0, 0, 64).bitmap()).bitmap(), 20, 1).empty());
    // Smaller than asked for, or than the window.
    EXPECT_TRUE(cascade.find(halves(64, 0, 0, 64).bitmap(), 65, 1).empty());
    EXPECT_TRUE(cascade.find(halves(19, 0, 0, 19).bitmap(), 1, 1).empty());
}

TEST_F(CascadeFile, RefusesMissingAndDamagedFiles) {
    EXPECT_THROW(Cascade("no-such-file.xml"), std::runtime_error);
    EXPECT_THROW(load(""), std::runtime_error);
    EXPECT_THROW(load("no cascade"), std::runtime_error);
    EXPECT_THROW(load(text("0 -1 1 0.4")), std::runtime_error) << "a feature that is not there";
    EXPECT_THROW(load(text("0 -2 0 0.4")), std::runtime_error) << "a leaf that is not there";
    EXPECT_THROW(load(text("1 0 0 0.4 1 0 0 0.4")), std::runtime_error) << "a tree without an end";
    EXPECT_THROW(load(text("")), std::runtime_error) << "a tree without nodes";
    EXPECT_THROW(load(text("0 -1 0 0.4", "1 0 20 20 -1.")), std::runtime_error) << "outside of the window";
}

TEST(Resampling, KeepsFlatAreasAndMeans) {
    Grey flat{std::vector<std::uint8_t>(30 * 20, 77), 30, 20};
    for (double step : {0.3, 1.0, 2.7}) {
        Grey other = vision::resampled(flat.bitmap(), -5, 3, step, 40, 12);
        EXPECT_EQ(other.pixels, std::vector<std::uint8_t>(40 * 12, 77)) << step;
    }
    // The same pixels in the same size.
    Grey same = halves(32, 4, 4, 20);
    EXPECT_EQ(vision::resampled(same.bitmap(), 0, 0, 1, 32, 32).pixels, same.pixels);
    // Alternating columns become their mean.
    Grey stripes{{}, 64, 8};
    for (int i = 0; i < 64 * 8; ++i) stripes.pixels.push_back(i % 2 ? 200 : 100);
    for (std::uint8_t pixel : vision::resampled(stripes.bitmap(), 8, 0, 4, 10, 2).pixels)
        EXPECT_NEAR(pixel, 150, 1);
}

} // namespace
