// CILenticularHaloGenerator, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CILenticularHaloGenerator, FadesAsCoreImageDoes) {
    Image image = filter("CILenticularHaloGenerator", {{"inputCenter", Numbers{100, 100}},
                                                       {"inputColor", Color{126 / 255., 1, 232 / 255., 1}},
                                                       {"inputHaloRadius", 50.0},
                                                       {"inputHaloWidth", 50.0},
                                                       {"inputHaloOverlap", 1.0},
                                                       {"inputStriationStrength", 1.0},
                                                       {"inputStriationContrast", 1.0},
                                                       {"inputTime", 1.0}});
    EXPECT_EQ(image->extent(), (Rect{0, 0, 200, 200}));
    Picture p = rendered(image, 0, 0, 200, 200);
    // Means of Core Image's alpha over rings, a pixel wide.
    const std::pair<int, double> rings[] = {
        {46, 0},      {52, 0.0139}, {55, 0.0605}, {58, 0.1320}, {61, 0.2134}, {67, 0.3829}, {73, 0.4857},
        {76, 0.4847}, {82, 0.3813}, {88, 0.2153}, {94, 0.0600}, {97, 0.0137}, {100, 0}};
    for (auto [radius, mean] : rings) {
        double sum = 0, squares = 0, count = 0;
        for (int y = 0; y < 200; ++y)
            for (int x = 0; x < 200; ++x) {
                double d = std::hypot(x + 0.5 - 100, y + 0.5 - 100), a = p.get(x, y)[3];
                if (d < radius || d >= radius + 1) continue;
                sum += a, squares += a * a, ++count;
            }
        // The rays differ, and so their means do a little.
        EXPECT_NEAR(sum / count, mean, 0.06 * mean + 0.001) << radius;
        if (radius == 73) {
            double spread = std::sqrt(squares / count - sum * sum / count / count);
            EXPECT_NEAR(spread, 0.19, 0.04);
        }
    }
    // The colour is the same all over.
    Pixel q = p.get(100, 173);
    EXPECT_NEAR(q[0] / q[3], linear(126 / 255.), 1e-4);
    EXPECT_NEAR(q[2] / q[3], linear(232 / 255.), 1e-4);
}
