// CICMYKHalftone, by what its inks leave of plain colours.
#include "reference.h"

using namespace reference;

namespace {

/// A plain colour of linear light, printed.
Picture printed(double r, double g, double b, double gcr, double ucr = 0.5) {
    Image plain = constant({coded(r), coded(g), coded(b), 1});
    return rendered(filter("CICMYKHalftone", {{"inputImage", plain}, {"inputGCR", gcr}, {"inputUCR", ucr}}),
                    0, 0, 60, 60);
}

/// The part of pixels where all colours are dark: black ink, or all three others.
double darkPart(const Picture& p) {
    double dark = 0;
    for (const Pixel& q : p.pixels) dark += std::max({q[0], q[1], q[2]}) < 0.5 ? 1 : 0;
    return dark / static_cast<double>(p.pixels.size());
}

Pixel mean(const Picture& p) {
    Pixel sum{};
    for (const Pixel& q : p.pixels)
        for (int c = 0; c < 4; ++c) sum[c] += q[c] / static_cast<double>(p.pixels.size());
    return sum;
}

} // namespace

TEST(CICMYKHalftone, LeavesPureColours) {
    for (Pixel pure : {Pixel{1, 1, 1, 1}, {0, 0, 0, 1}, {1, 0, 0, 1}, {0, 1, 1, 1}}) {
        Picture expected = filled(0, 0, 60, 60, [&](int, int) { return pure; });
        EXPECT_LT(difference(printed(pure[0], pure[1], pure[2], 0), expected), 1e-4);
    }
}

TEST(CICMYKHalftone, PrintsMoreInkWhereThereIsLessLight) {
    double last = -1;
    for (double light : {0.2, 0.35, 0.5, 0.65, 0.8}) {
        Pixel m = mean(printed(light, 1, 1, 0));
        EXPECT_GT(m[0], last + 0.05) << light;
        EXPECT_NEAR(m[1], 1, 1e-4) << "cyan ink takes red only";
        EXPECT_NEAR(m[2], 1, 1e-4);
        last = m[0];
    }
    EXPECT_NEAR(mean(printed(0.5, 1, 1, 0))[0], 0.5, 0.03);
}

TEST(CICMYKHalftone, InksHaveAnglesOfTheirOwn) {
    Picture cyan = printed(0.5, 1, 1, 0), magenta = printed(1, 0.5, 1, 0), yellow = printed(1, 1, 0.5, 0);
    double apart = 0;
    for (std::size_t i = 0; i < cyan.pixels.size(); ++i)
        apart += std::abs(cyan.pixels[i][0] - magenta.pixels[i][1]) +
                 std::abs(cyan.pixels[i][0] - yellow.pixels[i][2]);
    EXPECT_GT(apart / static_cast<double>(cyan.pixels.size()), 0.3);
}

TEST(CICMYKHalftone, BlackTakesTheGray) {
    // A dark gray: all of it black ink, or three inks whose dots lie apart and leave colours between.
    auto colorful = [](const Picture& p) {
        double sum = 0;
        for (const Pixel& q : p.pixels) sum += std::max({q[0], q[1], q[2]}) - std::min({q[0], q[1], q[2]});
        return sum / static_cast<double>(p.pixels.size());
    };
    EXPECT_LT(colorful(printed(0.5, 0.5, 0.5, 1, 1)), 1e-4);
    EXPECT_GT(colorful(printed(0.5, 0.5, 0.5, 0, 1)), 0.2);
    EXPECT_GT(colorful(printed(0.5, 0.5, 0.5, 1, 0.5)), 0.2) << "lighter than where black sets in";
    EXPECT_GT(darkPart(printed(0.25, 0.25, 0.25, 1)), 0.6);
}

TEST(CICMYKHalftone, KeepsAlpha) {
    Picture p = noise(70, 30, 91);
    Image image = filter("CICMYKHalftone", {{"inputImage", imageOf(p)}});
    Picture got = rendered(image, 0, 0, 70, 30);
    for (int y = 0; y < 30; ++y)
        for (int x = 0; x < 70; ++x) {
            EXPECT_NEAR(got.get(x, y)[3], p.get(x, y)[3], 1e-6);
            for (int c = 0; c < 3; ++c) EXPECT_LE(got.get(x, y)[c], got.get(x, y)[3] + 1e-6);
        }
    EXPECT_LT(difference(inTiles(image, 0, 0, 70, 30, 16), got), 1e-4);
}
