// CIEdges, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIEdges, AreSlopes) {
    Picture p = noise(41, 33, 95);
    Picture expected = filled(0, 0, 41, 33, [&](int x, int y) {
        Pixel out = p.get(x, y);
        for (int c = 0; c < 3; ++c) {
            double dx = 0, dy = 0;
            for (int k = -1; k <= 1; ++k) {
                double weight = k ? 1 : 2;
                dx += weight * (clamped(p, x + 1, y + k)[c] - clamped(p, x - 1, y + k)[c]);
                dy += weight * (clamped(p, x + k, y + 1)[c] - clamped(p, x + k, y - 1)[c]);
            }
            out[c] = std::min(1.6 * std::hypot(dx, dy) / 4, out[3]);
        }
        return out;
    });
    Image image = filter("CIEdges", {{"inputImage", imageOf(p)}, {"inputIntensity", 1.6}});
    EXPECT_LT(error(image, expected), floatError);
    EXPECT_LT(difference(inTiles(image, 0, 0, 41, 33), expected), floatError);
}
