// Effects on colours, against references in double precision.
#include "reference.h"

using namespace reference;

TEST(ColorEffects, VignetteEffectFadesOutsideOfACircle) {
    Picture p = noise(70, 60, 100);
    Picture expected = filled(0, 0, 70, 60, [&](int x, int y) {
        Pixel q = p.get(x, y);
        double t = std::clamp((std::hypot(x + 0.5 - 30, y + 0.5 - 22) - 20) / (0.8 * 10), 0.0, 1.0);
        for (int c = 0; c < 3; ++c) q[c] *= 1 - 0.7 * t * t * (3 - 2 * t);
        return q;
    });
    Values values{{"inputImage", imageOf(p)},
                  {"inputCenter", Numbers{30, 22}},
                  {"inputRadius", 20.0},
                  {"inputFalloff", 0.8},
                  {"inputIntensity", 0.7}};
    EXPECT_LT(error(filter("CIVignetteEffect", values), expected), floatError);
}

TEST(ColorEffects, ColorMapsLookLightUp) {
    Picture p = noise(60, 40, 101), gradient = noise(23, 3, 102);
    gradient.x0 = -7, gradient.y0 = 5;
    Picture expected = filled(0, 0, 60, 40, [&](int x, int y) {
        Pixel q = p.get(x, y), out{};
        if (q[3] == 0) return out;
        double light = (0.2126 * q[0] + 0.7152 * q[1] + 0.0722 * q[2]) / q[3];
        double place = 22 * coded(std::clamp(light, 0.0, 1.0)), t = place - std::floor(place);
        int i = int(place) - 7;
        for (int c = 0; c < 4; ++c)
            out[c] = q[3] * ((1 - t) * gradient.get(i, 5)[c] + t * gradient.get(std::min(i + 1, 15), 5)[c]);
        return out;
    });
    Image image =
        filter("CIColorMap", {{"inputImage", imageOf(p)}, {"inputGradientImage", imageOf(gradient)}});
    EXPECT_LT(error(image, expected), 5e-5); // a place among 23 colours
    EXPECT_EQ(image->regionOfInterest(1, {3, 3, 4, 4}), (Rect{-7, 5, 16, 6}));
    EXPECT_LT(error(filter("CIColorMap", {{"inputImage", imageOf(p)}}), p), floatError);
}

TEST(ColorEffects, CubesInASpaceOfTheirOwn) {
    Picture p = noise(37, 11, 103);
    // Swaps red and blue and halves green; linear in the numbers of the space, and with alpha 0.5.
    std::vector<float> entries;
    for (int corner = 0; corner < 8; ++corner)
        for (double v : {corner >> 2 & 1, corner >> 1 & 1, corner & 1, 2})
            entries.push_back(float(v * 0.5 * 0.5));
    for (int i = 0; i < 8; ++i) {
        entries[4 * i] *= 2, entries[4 * i + 2] *= 2; // premultiplied
    }
    auto* raw = reinterpret_cast<const std::uint8_t*>(entries.data());
    Values values{{"inputImage", imageOf(p)},
                  {"inputCubeDimension", 2.0},
                  {"inputCubeData", Bytes(raw, raw + 4 * entries.size())}};
    auto found = [](Pixel q, auto forth, auto back) {
        Pixel out{0, 0, 0, q[3] * 0.5};
        if (q[3] == 0) return out;
        for (int c = 0; c < 3; ++c) q[c] = std::clamp(forth(q[c] / q[3]), 0.0, 1.0);
        out[0] = out[3] * back(q[2]), out[1] = out[3] * back(q[1] / 2), out[2] = out[3] * back(q[0]);
        return out;
    };
    auto same = [](double v) { return v; };
    auto mapped = [&](auto forth, auto back) {
        return filled(0, 0, 37, 11, [&](int x, int y) { return found(p.get(x, y), forth, back); });
    };
    EXPECT_LT(error(filter("CIColorCubeWithColorSpace", values), mapped(same, same)), floatError);
    values["inputColorSpace"] = color::ColorSpace::sRGB()->iccData();
    EXPECT_LT(error(filter("CIColorCubeWithColorSpace", values), mapped(coded, linear)), 5e-5);
    // What is no profile counts as none.
    values["inputColorSpace"] = Bytes{1, 2, 3};
    EXPECT_LT(error(filter("CIColorCubeWithColorSpace", values), mapped(same, same)), floatError);
}

TEST(ColorEffects, WhiteOfOneLightBecomesWhiteOfAnother) {
    auto lit = [](double x, double y) {
        // Linear sRGB of a colour with these coordinates and Y 0.5.
        double X = 0.5 * x / y, Z = 0.5 * (1 - x - y) / y;
        return Pixel{3.2406 * X - 0.7686 - 0.4986 * Z, -0.9689 * X + 0.9379 + 0.0415 * Z,
                     0.0557 * X - 0.1020 + 1.0570 * Z, 1};
    };
    auto adapted = [](const Pixel& p, Numbers from, Numbers to) {
        Image image = imageOf(filled(0, 0, 1, 1, [&](int, int) { return p; }));
        return rendered(filter("CITemperatureAndTint", {{"inputImage", image},
                                                        {"inputNeutral", std::move(from)},
                                                        {"inputTargetNeutral", std::move(to)}}),
                        0, 0, 1, 1)
            .get(0, 0);
    };
    // Illuminant A is a black body of 2856 K; one of 6500 K is at 0.3135, 0.3237 (CIE 15).
    Pixel p = adapted(lit(0.4476, 0.4074), {2856, 0}, {6500, 0}), white = lit(0.3135, 0.3237);
    for (int c = 0; c < 4; ++c) EXPECT_NEAR(p[c], white[c], 0.004);
    p = adapted(lit(0.3135, 0.3237), {6500, 0}, {2856, 0});
    white = lit(0.4476, 0.4074);
    for (int c = 0; c < 4; ++c) EXPECT_NEAR(p[c], white[c], 0.004);
    // There and back; and light that is greener than it was taken for makes less green.
    Pixel q = adapted(adapted({0.3, 0.5, 0.2, 0.9}, {4000, 20}, {7000, -30}), {7000, -30}, {4000, 20});
    for (int c = 0; c < 3; ++c) EXPECT_NEAR(q[c], (Pixel{0.3, 0.5, 0.2, 0.9})[c], 1e-5);
    p = adapted({0.5, 0.5, 0.5, 1}, {6500, 40}, {6500, 0});
    EXPECT_LT(p[1], 0.5);
    EXPECT_GT(p[0], 0.5);
    EXPECT_GT(p[2], 0.5);
    EXPECT_EQ(adapted({0.3, 0.5, 0.2, 0.9}, {6500, 0}, {6500, 0}),
              (adapted({0.3, 0.5, 0.2, 0.9}, {1, 1}, {1, 1})));
}
