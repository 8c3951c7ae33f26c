// CIColorMap, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIColorMap, LooksLightUp) {
    Picture p = noise(60, 40, 101), gradient = noise(23, 3, 102);
    gradient.x0 = -7, gradient.y0 = 5;
    Picture expected = filled(0, 0, 60, 40, [&](int x, int y) {
        Pixel q = p.get(x, y), out{};
        if (q[3] == 0) return out;
        double place = std::clamp(23 * luminance(q) / q[3] - 0.5, 0.0, 22.0), t = place - std::floor(place);
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
