// CIWhitePointAdjust, against a reference in double precision and pixels of Core Image.
#include "reference.h"

using namespace reference;

TEST(CIWhitePointAdjust, MultipliesLight) {
    Picture p = noise(31, 9, 36);
    Color white{1, 0.6, 0.3, 0.5};
    Picture expected = mapped(p, [&](Pixel q) -> Pixel {
        return {q[0], q[1] * linear(0.6), q[2] * linear(0.3), q[3]};
    });
    Values values{{"inputImage", imageOf(p)}, {"inputColor", white}};
    EXPECT_LT(error(filter("CIWhitePointAdjust", values), expected), floatError);
}

TEST(CIWhitePointAdjust, AgreesWithCoreImage) {
    // What Core Image made of some pixels, sRGB, with the colour (255, 86, 172).
    struct Sample {
        int from[3], to[3];
    };
    const Sample samples[] = {
        {{126, 115, 85}, {126, 34, 54}}, {{143, 133, 104}, {143, 41, 67}}, {{120, 83, 37}, {120, 22, 22}},
        {{109, 71, 25}, {109, 17, 13}},  {{55, 63, 66}, {55, 15, 41}},     {{135, 116, 82}, {135, 34, 53}},
        {{61, 70, 75}, {61, 17, 48}},    {{144, 137, 111}, {144, 42, 73}}, {{74, 63, 35}, {74, 14, 20}},
        {{142, 69, 47}, {142, 17, 28}},  {{53, 28, 13}, {53, 4, 5}},       {{137, 124, 89}, {137, 37, 57}}};
    int count = static_cast<int>(std::size(samples));
    Picture p = filled(0, 0, count, 1, [&](int x, int) {
        const int* from = samples[x].from;
        return Pixel{linear(from[0] / 255.), linear(from[1] / 255.), linear(from[2] / 255.), 1};
    });
    Values values{{"inputImage", imageOf(p)}, {"inputColor", Color{1, 86 / 255., 172 / 255., 1}}};
    Picture got = rendered(filter("CIWhitePointAdjust", values), 0, 0, count, 1);
    for (int x = 0; x < count; ++x)
        for (int c = 0; c < 3; ++c)
            EXPECT_NEAR(255 * coded(got.get(x, 0)[c]), samples[x].to[c], 1) << x << ' ' << c;
}
