// CICheckerboardGenerator, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CICheckerboardGenerator, IsPlainAwayFromItsEdges) {
    Image image = filter("CICheckerboardGenerator", {{"inputCenter", Numbers{7, 3}}, {"inputWidth", 10.0}});
    EXPECT_TRUE(image->extent().isInfinite());
    Picture got = rendered(image, -600, -40, 1200, 80);
    int tested = 0;
    for (int y = -40; y < 40; ++y)
        for (int x = -600; x < 600; ++x) {
            int fx = ((x - 7) % 10 + 10) % 10, fy = ((y - 3) % 10 + 10) % 10;
            if (fx == 0 || fx == 9 || fy == 0 || fy == 9) continue;
            int squares = (x - 7 - fx) / 10 + (y - 3 - fy) / 10;
            ASSERT_NEAR(got.get(x, y)[0], squares % 2 == 0 ? 1 : 0, 1e-3) << x << ' ' << y;
            ++tested;
        }
    EXPECT_GT(tested, 50000);
}
