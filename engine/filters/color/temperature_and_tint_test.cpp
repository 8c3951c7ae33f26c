// CITemperatureAndTint, against the coordinates of illuminants.
#include "reference.h"

using namespace reference;

TEST(CITemperatureAndTint, MakesWhiteOfOneLightWhiteOfAnother) {
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
