// CIStripesGenerator, against a reference in double precision.
#include "reference.h"

using namespace reference;

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
