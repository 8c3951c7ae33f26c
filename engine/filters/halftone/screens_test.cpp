// CICircularScreen, CIDotScreen, CIHatchedScreen and CILineScreen, against pixels of Core Image's pictures
// and against what its pictures fit.
#include "picture_samples.h"

using namespace reference;

namespace {

std::function<Image(const Image&)> standard(const char* name) {
    return [=](const Image& image) { return filter(name, {{"inputImage", image}}); };
}

/// What light becomes at a pixel of a screen 12 pixels wide, with its centre in the middle of pixel (0, 0).
double printed(const char* name, double light, int x, int y, double sharpness, double angle = 0) {
    Values values{{"inputImage", constant({coded(light), coded(light), coded(light), 1})},
                  {"inputCenter", Numbers{0.5, 0.5}},
                  {"inputWidth", 12.0},
                  {"inputSharpness", sharpness}};
    if (findFilter(name)->findInput("inputAngle")) values["inputAngle"] = angle;
    Image image = filter(name, values);
    Pixel out = rendered(image, x, y, 1, 1).at(x, y);
    EXPECT_EQ(out[3], 1);
    EXPECT_EQ(out[0], out[1]);
    EXPECT_EQ(out[0], out[2]);
    return out[0];
}

/// Sharp screens have black and white only, and no number that is none.
void expectBlackAndWhite(const char* name) {
    for (int x = 0; x < 12; ++x) {
        double v = printed(name, 0.4321, x, 2, 1);
        EXPECT_TRUE(v == 0 || v == 1) << x << ' ' << v;
    }
}

/// Premultiplied gray of a picture with alpha, alike in tiles.
void expectAlphaKept(const char* name) {
    Picture p = noise(70, 30, 90);
    Image image = filter(name, {{"inputImage", imageOf(p)}, {"inputWidth", 9.0}});
    Picture got = rendered(image, 0, 0, 70, 30);
    EXPECT_LT(difference(inTiles(image, 0, 0, 70, 30, 16), got), 1e-4);
    Picture opaque = mapped(p, [](Pixel q) { return q; });
    for (Pixel& q : opaque.pixels)
        for (int c = 0; c < 4; ++c) q[c] = c == 3 ? 1 : q[3] > 0 ? q[c] / q[3] : 0;
    Picture whole =
        rendered(filter(name, {{"inputImage", imageOf(opaque)}, {"inputWidth", 9.0}}), 0, 0, 70, 30);
    for (int y = 0; y < 30; ++y)
        for (int x = 0; x < 70; ++x) {
            EXPECT_NEAR(got.get(x, y)[3], p.get(x, y)[3], 1e-6);
            EXPECT_NEAR(got.get(x, y)[0], p.get(x, y)[3] * whole.get(x, y)[0], 1e-4) << x << ' ' << y;
        }
}

} // namespace

TEST(CICircularScreen, PrintsAsCoreImage) {
    expectColors({{544, 7, {79, 133, 35}, {188, 188, 188}},
                  {330, 351, {235, 51, 27}, {202, 202, 202}},
                  {164, 436, {249, 84, 30}, {100, 100, 100}},
                  {60, 205, {255, 240, 4}, {149, 149, 149}},
                  {455, 148, {243, 71, 25}, {223, 223, 223}},
                  {578, 321, {48, 123, 5}, {186, 186, 186}},
                  {174, 353, {235, 76, 104}, {128, 128, 128}},
                  {624, 123, {84, 160, 26}, {45, 45, 45}}},
                 standard("CICircularScreen"));
    expectAlphaKept("CICircularScreen");
    expectBlackAndWhite("CICircularScreen");
}

TEST(CIHatchedScreen, PrintsAsCoreImage) {
    expectColors({{119, 331, {206, 45, 53}, {179, 179, 179}},
                  {146, 298, {255, 221, 0}, {176, 176, 176}},
                  {330, 351, {235, 51, 27}, {206, 206, 206}},
                  {455, 148, {243, 71, 25}, {222, 222, 222}},
                  {174, 353, {235, 76, 104}, {223, 223, 223}},
                  {210, 173, {119, 0, 4}, {78, 78, 78}},
                  {487, 393, {143, 192, 74}, {149, 149, 149}},
                  {291, 149, {239, 171, 2}, {104, 104, 104}}},
                 standard("CIHatchedScreen"));
    expectAlphaKept("CIHatchedScreen");
    expectBlackAndWhite("CIHatchedScreen");
    // Turned by a quarter, the lines of dark places lie along x.
    EXPECT_NEAR(printed("CIHatchedScreen", 0.2, 5, 0, 0.5, M_PI / 2), 0.9, 1e-4);
    EXPECT_NEAR(printed("CIHatchedScreen", 0.2, 0, 5, 0.5, M_PI / 2), 0, 1e-4);
}

TEST(CILineScreen, RisesFromLinesAcrossTheAngle) {
    // Through the centre the pattern is 0, a pixel away 1/6, and half the width away 1.
    EXPECT_NEAR(printed("CILineScreen", 0.1, 0, 0, 0.7), 0.1 / 0.3 + 0.5, 1e-4);
    EXPECT_NEAR(printed("CILineScreen", 0.1, 1, 0, 0.7), (0.1 - 1 / 6.) / 0.3 + 0.5, 1e-4);
    EXPECT_NEAR(printed("CILineScreen", 0.1, -1, 40, 0.7), (0.1 - 1 / 6.) / 0.3 + 0.5, 1e-4);
    EXPECT_NEAR(printed("CILineScreen", 0.9, 6, 3, 0.7), (0.9 - 1) / 0.3 + 0.5, 1e-4);
    EXPECT_NEAR(printed("CILineScreen", 0.1, 40, 1, 0.7, M_PI / 2), (0.1 - 1 / 6.) / 0.3 + 0.5, 1e-4);
    EXPECT_NEAR(printed("CILineScreen", 0.4, 3, 0, 0), 0.4, 1e-4) << "the softest";
    EXPECT_NEAR(printed("CILineScreen", 0, 0, 0, 1), 0.5, 1e-6)
        << "the sharpest, where light and pattern meet";
    expectAlphaKept("CILineScreen");
    expectBlackAndWhite("CILineScreen");
}

TEST(CIDotScreen, RisesInWavesBothWays) {
    // A quarter of the width away in x and y are the pattern's peaks and hollows, 0.5 +- 0.3475.
    EXPECT_NEAR(printed("CIDotScreen", 0.4, 0, 0, 0.7), (0.4 - 0.5) / 0.3 + 0.5, 1e-4);
    EXPECT_NEAR(printed("CIDotScreen", 0.8, 3, 3, 0.7), (0.8 - 0.8475) / 0.3 + 0.5, 1e-4);
    EXPECT_NEAR(printed("CIDotScreen", 0.2, -3, -3, 0.7), (0.2 - 0.1525) / 0.3 + 0.5, 1e-4);
    EXPECT_NEAR(printed("CIDotScreen", 0.5, 3, -3, 0.7), 0.5, 1e-4);
    EXPECT_NEAR(printed("CIDotScreen", 0.6, 3, 0, 0.7), (0.6 - 0.67375) / 0.3 + 0.5, 1e-4);
    EXPECT_EQ(printed("CIDotScreen", 1, 3, 3, 0.7), 1);
    EXPECT_EQ(printed("CIDotScreen", 0, -3, -3, 0.7), 0);
    expectAlphaKept("CIDotScreen");
    expectBlackAndWhite("CIDotScreen");
}
