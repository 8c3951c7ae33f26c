// CIDepthOfField: sharp along the line, blurred far from it.
#include "reference.h"

using namespace reference;

namespace {

Image focused(const Picture& p, Values values) {
    values["inputImage"] = imageOf(p);
    values.try_emplace("inputPoint0", Numbers{0, 30});
    values.try_emplace("inputPoint1", Numbers{30, 30});
    values.try_emplace("inputSaturation", 1.0);
    values.try_emplace("inputUnsharpMaskIntensity", 0.0);
    return filter("CIDepthOfField", values);
}

/// How much neighbours in a row differ, in the mean.
double contrast(const Picture& p, int y) {
    double sum = 0;
    for (int x = p.x0 + 10; x < p.x0 + p.width - 10; ++x)
        sum += std::abs(p.get(x + 1, y)[1] - p.get(x, y)[1]);
    return sum / (p.width - 20);
}

} // namespace

TEST(CIDepthOfField, IsSharpAlongTheLineOnly) {
    Picture p = noise(80, 80, 4, true);
    Image image = focused(p, {});
    EXPECT_EQ(image->extent(), (Rect{0, 0, 80, 80}));
    Picture out = rendered(image, 0, 0, 80, 80);
    EXPECT_GT(contrast(out, 30), 0.95 * contrast(p, 30));
    EXPECT_LT(contrast(out, 36), 0.95 * contrast(p, 36));
    EXPECT_LT(contrast(out, 50), 0.1 * contrast(p, 50));
    EXPECT_LT(contrast(out, 75), 0.1 * contrast(p, 75));
}

TEST(CIDepthOfField, WithoutRadiusKeepsThePicture) {
    Picture p = noise(60, 60, 5, true);
    EXPECT_LT(error(focused(p, {{"inputRadius", 0.0}}), p), 1e-5);
}

TEST(CIDepthOfField, SharpensAndSaturates) {
    Picture p = noise(60, 60, 6, true);
    Picture sharper = rendered(focused(p, {{"inputUnsharpMaskIntensity", 2.0}}), 0, 0, 60, 60);
    EXPECT_GT(contrast(sharper, 30), 1.3 * contrast(p, 30));
    Picture gray = rendered(focused(p, {{"inputSaturation", 0.0}}), 0, 0, 60, 60);
    EXPECT_NEAR(gray.at(30, 30)[0], gray.at(30, 30)[2], 1e-5);
}
