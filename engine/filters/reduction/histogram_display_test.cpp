// CIHistogramDisplayFilter: heights of bars, limits.
#include "reference.h"

using namespace reference;

namespace {

/// Red rises to 0.2 at the right, green is 0.1 everywhere.
Picture histogram() {
    return filled(0, 0, 40, 1, [](int x, int) { return Pixel{0.005 * (x + 1), 0.1, 0, 1}; });
}

Picture shown(double low = 0, double high = 1) {
    Image image = filter("CIHistogramDisplayFilter", {{"inputImage", imageOf(histogram())},
                                                      {"inputHeight", 80.0},
                                                      {"inputLowLimit", low},
                                                      {"inputHighLimit", high}});
    EXPECT_EQ(image->extent(), (Rect{0, 0, 40, 80}));
    return rendered(image, 0, 0, 40, 80);
}

int height(const Picture& p, int x, int component) {
    int rows = 0;
    while (rows < 80 && p.get(x, rows)[component] > 0.5) ++rows;
    return rows;
}

} // namespace

TEST(CIHistogramDisplayFilter, DrawsBars) {
    Picture out = shown();
    for (int x = 0; x < 40; ++x) {
        EXPECT_EQ(height(out, x, 0), 2 * (x + 1)) << x;
        EXPECT_EQ(height(out, x, 1), 40) << x;
        EXPECT_EQ(height(out, x, 2), 0) << x;
        EXPECT_EQ(out.at(x, 79)[3], 1);
    }
}

TEST(CIHistogramDisplayFilter, DarkensAndLightensBeyondTheLimits) {
    Picture plain = shown(), out = shown(0.25, 0.75);
    for (int c = 0; c < 3; ++c) {
        EXPECT_LT(out.at(9, 70)[c], plain.at(9, 70)[c]);
        EXPECT_EQ(out.at(10, 70)[c], plain.at(10, 70)[c]);
        EXPECT_EQ(out.at(29, 70)[c], plain.at(29, 70)[c]);
        EXPECT_GT(out.at(30, 70)[c], plain.at(30, 70)[c]);
    }
}

TEST(CIHistogramDisplayFilter, ShowsAnAreaHistogram) {
    Image bins = filter("CIAreaHistogram", {{"inputImage", imageOf(noise(50, 40, 1, true))},
                                            {"inputExtent", Numbers{0, 0, 50, 40}},
                                            {"inputCount", 32.0}});
    Image image = filter("CIHistogramDisplayFilter", {{"inputImage", bins}});
    EXPECT_EQ(image->extent(), (Rect{0, 0, 32, 100}));
    EXPECT_LT(difference(rendered(image, 0, 0, 32, 100), inTiles(image, 0, 0, 32, 100)), 1e-6);
}
