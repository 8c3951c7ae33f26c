// CIBoxBlur, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIBoxBlur, IsTheMeanOfASquare) {
    Picture p = noise(50, 41, 9);
    for (double radius : {1.0, 3.0, 7.25}) {
        auto weight = [=](int k) {
            return std::clamp(radius + 1 - std::abs(k), 0.0, 1.0) / (2 * radius + 1);
        };
        Picture truth = bothWays(p, 9, weight);
        EXPECT_LT(error(filter("CIBoxBlur", {{"inputImage", imageOf(p)}, {"inputRadius", radius}}), truth),
                  floatError)
            << radius;
    }
}
