// CIAreaHistogram, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIAreaHistogram, CountsEachComponent) {
    Picture p = noise(40, 30, 102);
    Picture expected(0, 0, 10, 1);
    double all = 38 * 34;
    for (int y = -6; y < 28; ++y)
        for (int x = 5; x < 43; ++x) {
            Pixel q = p.get(x, y);
            for (int c = 0; c < 4; ++c) {
                double v = c == 3 ? q[3] : q[3] > 0 ? double(float(q[c])) / float(q[3]) : 0;
                expected.at(std::clamp(int(v * 10), 0, 9), 0)[c] += 0.5 / all;
            }
        }
    Values values{{"inputImage", imageOf(p)},
                  {"inputExtent", Numbers{5, -6, 38, 34}},
                  {"inputCount", 10.0},
                  {"inputScale", 0.5}};
    Image image = filter("CIAreaHistogram", values);
    EXPECT_EQ(image->extent(), (Rect{0, 0, 10, 1}));
    EXPECT_LT(error(image, expected), 1e-6);
    Picture got = rendered(image, 0, 0, 10, 1);
    for (int c = 0; c < 4; ++c) {
        double sum = 0;
        for (const Pixel& q : got.pixels) sum += q[c];
        EXPECT_NEAR(sum, 0.5, 1e-6);
    }
}
