// CIColorMonochrome, against what Core Image's pictures fit.
#include "reference.h"

using namespace reference;

namespace {

Pixel toned(double gray, double intensity, double alpha = 1) {
    double v = gray * alpha;
    Image one = imageOf(filled(0, 0, 1, 1, [&](int, int) { return Pixel{v, v, v, alpha}; }));
    Values values{
        {"inputImage", one}, {"inputColor", Color{0.2, 0.5, 0.9, 1}}, {"inputIntensity", intensity}};
    return rendered(filter("CIColorMonochrome", values), 0, 0, 1, 1).at(0, 0);
}

} // namespace

TEST(CIColorMonochrome, GoesFromBlackThroughTheColourToWhite) {
    const double color[] = {linear(0.2), linear(0.5), linear(0.9)};
    for (int c = 0; c < 3; ++c) {
        EXPECT_NEAR(toned(0, 1)[c], 0, floatError);
        EXPECT_NEAR(toned(0.25, 1)[c], color[c] / 2, floatError);
        EXPECT_NEAR(toned(0.5, 1)[c], color[c], floatError);
        EXPECT_NEAR(toned(0.75, 1)[c], (color[c] + 1) / 2, floatError);
        EXPECT_NEAR(toned(1, 1)[c], 1, floatError);
        EXPECT_NEAR(toned(0.5, 0.4)[c], 0.5 + 0.4 * (color[c] - 0.5), floatError) << "mixed";
        EXPECT_NEAR(toned(0.75, 1, 0.5)[c], (color[c] + 1) / 4, floatError) << "half transparent";
    }
    EXPECT_NEAR(toned(0.75, 1, 0.5)[3], 0.5, floatError);
}

TEST(CIColorMonochrome, GoesByTheLuminance) {
    Picture p = noise(31, 9, 37);
    Picture gray = mapped(p, [](Pixel q) { return Pixel{luminance(q), luminance(q), luminance(q), q[3]}; });
    auto toned = [](const Picture& from) {
        return rendered(filter("CIColorMonochrome", {{"inputImage", imageOf(from)}}), 0, 0, 31, 9);
    };
    EXPECT_LT(difference(toned(p), toned(gray)), floatError);
}
