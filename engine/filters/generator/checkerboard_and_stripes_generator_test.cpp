// CICheckerboardGenerator and CIStripesGenerator, against references in double precision.
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

TEST(CIStripesGenerator, BeginsWithTheSecondColourAtTheCentre) {
    // As Core Image draws it: width 50 around 0, from 0 to 50 the second colour.
    Values values{{"inputCenter", Numbers{0, 0}},
                  {"inputColor0", Color{0, 1, 0, 1}},
                  {"inputColor1", Color{1, 0, 0, 1}},
                  {"inputWidth", 50.0}};
    Picture expected = filled(-500, -3, 1000, 5, [](int x, int) {
        return ((x + 1000) / 50) % 2 == 0 ? Pixel{1, 0, 0, 1} : Pixel{0, 1, 0, 1};
    });
    EXPECT_LT(error(filter("CIStripesGenerator", values), expected), floatError);
    // Without sharpness a ramp from the middle of one stripe to that of the next.
    values["inputSharpness"] = 0.0;
    Picture ramp = filled(-25, 0, 50, 1, [](int x, int) {
        double t = (x + 25.5) / 50;
        return Pixel{t, 1 - t, 0, 1};
    });
    EXPECT_LT(error(filter("CIStripesGenerator", values), ramp), floatError);
}
