// CISunbeamsGenerator, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CISunbeamsGenerator, ShinesFromADisc) {
    Image image = filter("CISunbeamsGenerator", {{"inputSunRadius", 10.0}, {"inputMaxStriationRadius", 3.0}});
    EXPECT_EQ(image->extent(), (Rect{110, 110, 190, 190}));
    Picture p = rendered(image, 100, 100, 100, 100);
    double before = 1;
    for (int ring = 0; ring < 40; ring += 5) {
        double sum = 0, count = 0;
        for (int y = 100; y < 200; ++y)
            for (int x = 100; x < 200; ++x) {
                double d = std::hypot(x + 0.5 - 150, y + 0.5 - 150);
                if (d < 9.5) EXPECT_NEAR(p.get(x, y)[3], 1, floatError);
                if (d > 40.5) EXPECT_EQ(p.get(x, y)[3], 0);
                if (d >= ring && d < ring + 5) sum += p.get(x, y)[3], ++count;
            }
        EXPECT_LE(sum / count, before + 1e-6) << ring;
        before = sum / count;
    }
    EXPECT_EQ(difference(inTiles(image, 100, 100, 100, 100, 16), p), 0);
}
