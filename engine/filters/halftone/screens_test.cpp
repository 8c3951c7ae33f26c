// CICircularScreen, CIDotScreen, CIHatchedScreen and CILineScreen, against patterns in double precision and
// the light that they have to keep.
#include "screen_reference.h"

using namespace reference;

namespace {

using Pattern = std::function<double(double, double)>;

/// The light of a picture compared with a pattern.
void expectScreened(const char* name, const Pattern& pattern) {
    Picture p = noise(70, 30, 90);
    for (double sharpness : {0.2, 0.7}) {
        Values values = screen(imageOf(p), 9);
        values["inputSharpness"] = sharpness;
        Picture expected = filled(0, 0, 70, 30, [&](int x, int y) {
            Pixel q = straight(p.get(x, y));
            double gray = q[3] * white(luminance(q), at(pattern, x, y, 9), std::max(1 - sharpness, 2. / 9));
            return Pixel{gray, gray, gray, q[3]};
        });
        Image image = filter(name, values);
        EXPECT_LT(error(image, expected), patternError) << sharpness;
        EXPECT_LT(difference(inTiles(image, 0, 0, 70, 30, 16), expected), patternError) << sharpness;
    }
}

/// As much of an area is white as there is light.
void expectLightKept(const char* name) {
    for (double light : {0.0, 0.2, 0.5, 0.8, 1.0}) {
        Values values = screen(constant({coded(light), coded(light), coded(light), 1}), 12);
        values["inputSharpness"] = 0.9;
        EXPECT_NEAR(mean(rendered(filter(name, values), 0, 0, 400, 400))[0], light, 0.01) << light;
    }
}

} // namespace

TEST(CICircularScreen, ComparesLightWithItsPattern) {
    expectScreened("CICircularScreen", [](double u, double v) { return wave(std::hypot(u, v)); });
}

TEST(CICircularScreen, KeepsTheLightOfAnArea) { expectLightKept("CICircularScreen"); }

TEST(CIDotScreen, ComparesLightWithItsPattern) { expectScreened("CIDotScreen", dots); }

TEST(CIDotScreen, KeepsTheLightOfAnArea) { expectLightKept("CIDotScreen"); }

TEST(CIHatchedScreen, ComparesLightWithItsPattern) {
    expectScreened("CIHatchedScreen",
                   [](double u, double v) { return std::pow(std::max(wave(u), wave(v)), 2); });
}

TEST(CIHatchedScreen, KeepsTheLightOfAnArea) { expectLightKept("CIHatchedScreen"); }

TEST(CILineScreen, ComparesLightWithItsPattern) {
    expectScreened("CILineScreen", [](double, double v) { return wave(v); });
}

TEST(CILineScreen, KeepsTheLightOfAnArea) { expectLightKept("CILineScreen"); }
