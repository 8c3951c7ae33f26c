// CIGloom, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIGloom, TakesTheSmallerOfThePictureAndItsBlur) {
    Picture p = noise(50, 40, 94);
    Picture blurred = trueGaussian(p, 4);
    Picture expected = filled(-8, -8, 66, 56, [&](int x, int y) {
        Pixel out = p.get(x, y);
        for (int c = 0; c < 4; ++c) out[c] = 0.3 * out[c] + 0.7 * std::min(out[c], blurred.get(x, y)[c]);
        return out;
    });
    Values values{{"inputImage", imageOf(p)}, {"inputRadius", 4.0}, {"inputIntensity", 0.7}};
    Image image = filter("CIGloom", values);
    EXPECT_LT(error(image, expected), halfStep);
    EXPECT_EQ(image->extent(),
              filter("CIGaussianBlur", {{"inputImage", imageOf(p)}, {"inputRadius", 4.0}})->extent());
}
