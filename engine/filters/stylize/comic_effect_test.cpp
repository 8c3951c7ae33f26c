// CIComicEffect: outlines, dots and few colours.
#include "reference.h"

using namespace reference;

namespace {

Picture comic(const Picture& p) {
    Image image = filter("CIComicEffect", {{"inputImage", imageOf(p)}});
    EXPECT_EQ(image->extent(), (Rect{0, 0, 1.0 * p.width, 1.0 * p.height}));
    return rendered(image, 0, 0, p.width, p.height);
}

Picture plain(double coded) {
    double v = linear(coded);
    return filled(0, 0, 60, 60, [=](int, int) { return Pixel{v, v, v, 1}; });
}

} // namespace

TEST(CIComicEffect, OutlinesEdges) {
    Picture out = comic(filled(0, 0, 60, 60, [](int x, int) {
        return x < 30 ? Pixel{0, 0, 0.2, 1} : Pixel{1, 1, 0, 1};
    }));
    // Black between blue and yellow.
    for (int y = 10; y < 50; ++y) {
        double edge = std::min(out.at(29, y)[2] + out.at(29, y)[0], out.at(30, y)[2] + out.at(30, y)[0]);
        EXPECT_LT(edge, 0.02) << y;
    }
    EXPECT_GT(out.at(50, 30)[0], 0.9);
}

// A component on one of the steps is even, one between them is made of dots of both.
TEST(CIComicEffect, PrintsFewStepsWithDots) {
    for (double on : {0.0, 0.25, 0.5, 0.75, 1.0}) {
        Picture out = comic(plain(on));
        for (int x = 10; x < 50; ++x) EXPECT_NEAR(coded(out.at(x, 30)[0]), on, 0.01) << on;
    }
    Picture out = comic(plain(0.625));
    double low = 1, high = 0, mean = 0;
    for (int y = 10; y < 50; ++y)
        for (int x = 10; x < 50; ++x) {
            double v = coded(out.at(x, y)[1]);
            low = std::min(low, v), high = std::max(high, v), mean += v / 1600;
        }
    EXPECT_NEAR(low, 0.5, 0.01);
    EXPECT_NEAR(high, 0.75, 0.01);
    EXPECT_NEAR(mean, 0.625, 0.03);
}

TEST(CIComicEffect, KeepsTransparency) {
    Picture out = comic(filled(0, 0, 60, 60, [](int x, int) {
        return x < 30 ? Pixel{} : Pixel{0.3, 0.3, 0.3, 1};
    }));
    EXPECT_EQ(out.at(5, 30)[3], 0);
    EXPECT_NEAR(out.at(55, 30)[3], 1, 1e-5);
}
