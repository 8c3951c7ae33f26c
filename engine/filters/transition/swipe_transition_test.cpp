// CISwipeTransition, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CISwipeTransition, MovesABarOverTheExtent) {
    Picture p = noise(60, 40, 52), q = noise(60, 40, 53);
    double angle = 0.6, width = 25, opacity = 0.8, time = 0.45;
    const Pixel color{0.5, 0, 0, 0.5};
    Picture expected = filled(0, 0, 60, 40, [&](int x, int y) {
        // Where the bar's front is, between the corners that come first and last.
        double dx = std::cos(angle), dy = std::sin(angle);
        double first = 5 * dx + 3 * dy, last = 55 * dx + 33 * dy;
        double front = first + time * (last - first + width);
        double t = std::clamp((front - (x + 0.5) * dx - (y + 0.5) * dy) / width, 0.0, 1.0);
        double k = opacity * (1 - std::abs(2 * t - 1));
        Pixel out;
        for (int c = 0; c < 4; ++c)
            out[c] = (1 - k) * ((1 - t) * p.get(x, y)[c] + t * q.get(x, y)[c]) + k * color[c];
        return out;
    });
    Values values{{"inputImage", imageOf(p)},
                  {"inputTargetImage", imageOf(q)},
                  {"inputExtent", Numbers{5, 3, 50, 30}},
                  {"inputColor", Color{1, 0, 0, 0.5}},
                  {"inputTime", time},
                  {"inputAngle", angle},
                  {"inputWidth", width},
                  {"inputOpacity", opacity}};
    EXPECT_LT(error(filter("CISwipeTransition", values), expected), floatError);
    // The bar passes over the whole extent.
    values["inputExtent"] = Numbers{0, 0, 60, 40};
    values["inputTime"] = 0.0;
    EXPECT_LT(error(filter("CISwipeTransition", values), p), floatError);
    values["inputTime"] = 1.0;
    EXPECT_LT(error(filter("CISwipeTransition", values), q), 5 * floatError);
}

TEST(CISwipeTransition, IsAsCoreImageDrawsIt) {
    // Pixels of a picture that Core Image made of two others: their places, then the 8-bit colours of the
    // image, the target and the result.
    struct Sample {
        int x, y;
        std::array<int, 3> image, target, result;
    };
    const Sample samples[] = {
        {60, 1399, {38, 105, 192}, {255, 255, 255}, {38, 105, 192}},
        {200, 1399, {33, 102, 187}, {255, 255, 255}, {80, 146, 186}},
        {300, 1399, {33, 98, 183}, {255, 255, 255}, {117, 213, 173}},
        {415, 1399, {30, 97, 180}, {255, 255, 255}, {96, 249, 141}},
        {520, 1399, {33, 96, 179}, {255, 255, 255}, {162, 241, 187}},
        {640, 1399, {32, 95, 178}, {255, 255, 255}, {236, 249, 241}},
        {250, 1199, {47, 125, 215}, {255, 255, 255}, {116, 208, 193}},
        {390, 1199, {49, 120, 211}, {255, 255, 255}, {95, 250, 142}},
        {560, 1199, {51, 118, 209}, {255, 255, 255}, {206, 244, 221}},
        {100, 599, {22, 18, 10}, {255, 255, 255}, {88, 138, 96}},
        {330, 599, {127, 116, 101}, {255, 255, 255}, {117, 247, 145}},
        {450, 599, {115, 109, 103}, {96, 54, 168}, {91, 173, 146}},
        {20, 199, {81, 77, 69}, {255, 255, 255}, {98, 123, 95}},
        {200, 199, {66, 65, 56}, {255, 255, 255}, {114, 237, 141}},
        {400, 199, {215, 227, 243}, {255, 255, 255}, {207, 252, 218}},
    };
    auto colorOf = [](const std::array<int, 3>& c) {
        return Color{c[0] / 255.0, c[1] / 255.0, c[2] / 255.0, 1};
    };
    for (const Sample& sample : samples) {
        Values values{{"inputImage", constant(colorOf(sample.image))},
                      {"inputTargetImage", constant(colorOf(sample.target))},
                      {"inputExtent", Numbers{0, 0, 500, 500}},
                      {"inputColor", colorOf({0x4A, 0xFF, 0x7E})},
                      {"inputTime", 0.4951334595680237},
                      {"inputAngle", 3.0},
                      {"inputWidth", 500.0},
                      {"inputOpacity", 0.9}};
        Pixel got =
            rendered(filter("CISwipeTransition", values), sample.x, sample.y, 1, 1).get(sample.x, sample.y);
        for (int c = 0; c < 3; ++c)
            EXPECT_NEAR(255 * coded(got[c]), sample.result[c], 1.5)
                << sample.x << ' ' << sample.y << ' ' << c;
    }
}
