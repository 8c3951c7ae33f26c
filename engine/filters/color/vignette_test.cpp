// CIVignette, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIVignette, FallsOffAsTheFourthPowerOfACosine) {
    Picture p = noise(40, 30, 8);
    Picture expected = filled(0, 0, 40, 30, [&](int x, int y) {
        Pixel q = p.get(x, y);
        double d = std::hypot(x + 0.5 - 20, y + 0.5 - 15) / 25 * 1.5,
               f = 1 + 0.8 * (std::pow(std::cos(std::atan(d)), 4) - 1);
        return Pixel{q[0] * f, q[1] * f, q[2] * f, q[3]};
    });
    Values values{{"inputImage", imageOf(p)}, {"inputIntensity", 0.8}, {"inputRadius", 1.5}};
    EXPECT_LT(error(filter("CIVignette", values), expected), floatError);
}
