// CIDissolveTransition, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIDissolveTransition, MixesLight) {
    Picture p = noise(30, 20, 50), q = noise(30, 20, 51);
    q.x0 = 12;
    Picture expected = filled(-5, -5, 60, 30, [&](int x, int y) {
        Pixel out;
        for (int c = 0; c < 4; ++c) out[c] = 0.7 * p.get(x, y)[c] + 0.3 * q.get(x, y)[c];
        return out;
    });
    Values values{{"inputImage", imageOf(p)}, {"inputTargetImage", imageOf(q)}, {"inputTime", 0.3}};
    EXPECT_LT(error(filter("CIDissolveTransition", values), expected), floatError);
    EXPECT_EQ(filter("CIDissolveTransition", {{"inputTargetImage", imageOf(q)}}), nullptr);
}
