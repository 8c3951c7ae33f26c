// CINoiseReduction, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CINoiseReduction, SmoothesNoiseAndSharpensEdges) {
    Picture p = noise(41, 33, 74);
    // What Core Image's picture shows around a dot where all is noise.
    const double coreImages[] = {0.0975, 0.2415, 0.322, 0.2415, 0.0975};
    for (double level : {0.0, 0.08, 0.3, 5.0}) {
        double sharpness = 0.6;
        Picture expected = filled(0, 0, 41, 33, [&](int x, int y) {
            Pixel out = p.get(x, y), from;
            for (int c = 0; c < 4; ++c) {
                double blurred = 0;
                for (int k = 0; k < 25; ++k)
                    blurred +=
                        coreImages[k % 5] * coreImages[k / 5] * clamped(p, x + k % 5 - 2, y + k / 5 - 2)[c];
                from[c] = out[c] - blurred;
            }
            double edge = level > 0 ? std::clamp((std::abs(luminance(from)) - level) / level, 0.0, 1.0) : 1;
            for (int c = 0; c < 4; ++c) {
                out[c] += (edge * (1 + sharpness) - 1) * from[c];
                out[c] = std::clamp(out[c], 0.0, c < 3 ? 1e9 : 1);
            }
            return out;
        });
        Image image =
            filter("CINoiseReduction",
                   {{"inputImage", imageOf(p)}, {"inputNoiseLevel", level}, {"inputSharpness", sharpness}});
        EXPECT_LT(error(image, expected), floatError) << level;
        EXPECT_LT(difference(inTiles(image, 0, 0, 41, 33), expected), floatError) << level;
    }
    Image image = imageOf(p);
    EXPECT_EQ(filter("CINoiseReduction",
                     {{"inputImage", image}, {"inputNoiseLevel", 0.0}, {"inputSharpness", 0.0}}),
              image);
}
