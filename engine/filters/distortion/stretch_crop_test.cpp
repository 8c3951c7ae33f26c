// CIStretchCrop: what its amounts do at their ends.
#include "reference.h"

using namespace reference;

namespace {

/// Red tells the place across, green the place up, each from 0 to 1.
Picture places(int w, int h) {
    return filled(3, 4, w, h, [=](int x, int y) {
        return Pixel{(x - 3 + 0.5) / w, (y - 4 + 0.5) / h, 0, 1};
    });
}

Picture fitted(const Picture& p, int w, int h, double crop, double centre) {
    Image image = filter("CIStretchCrop", {{"inputImage", imageOf(p)},
                                           {"inputSize", Numbers{1.0 * w, 1.0 * h}},
                                           {"inputCropAmount", crop},
                                           {"inputCenterStretchAmount", centre}});
    EXPECT_EQ(image->extent(), (Rect{0, 0, 1.0 * w, 1.0 * h}));
    return rendered(image, 0, 0, w, h);
}

} // namespace

TEST(CIStretchCrop, StretchesEvenly) {
    for (auto [w, h] : {std::pair{160, 40}, {80, 120}}) {
        Picture out = fitted(places(80, 40), w, h, 0, 1);
        for (int x = 4; x < w - 4; x += 5) EXPECT_NEAR(out.at(x, h / 2)[0], (x + 0.5) / w, 1e-3) << x;
        for (int y = 4; y < h - 4; y += 5) EXPECT_NEAR(out.at(w / 2, y)[1], (y + 0.5) / h, 1e-3) << y;
    }
}

TEST(CIStretchCrop, CropsOnly) {
    Picture out = fitted(places(80, 40), 160, 40, 1, 0);
    // Twice as large, and the middle half of its height.
    for (int x = 4; x < 156; x += 5) EXPECT_NEAR(out.at(x, 20)[0], (x + 0.5) / 160, 1e-3) << x;
    for (int y = 0; y < 40; y += 3) EXPECT_NEAR(out.at(80, y)[1], 0.25 + (y + 0.5) / 80, 1e-3) << y;
}

TEST(CIStretchCrop, KeepsTheProportionsOfTheMiddle) {
    Picture out = fitted(places(80, 40), 160, 40, 0, 0);
    // A pixel in the middle is a pixel of the picture, one near the end much less.
    EXPECT_NEAR(out.at(81, 20)[0] - out.at(80, 20)[0], 1.0 / 80, 1e-3);
    EXPECT_LT(out.at(150, 20)[0] - out.at(149, 20)[0], 0.5 / 80);
    for (int x = 1; x < 160; ++x) EXPECT_GE(out.at(x, 20)[0], out.at(x - 1, 20)[0]);
    EXPECT_NEAR(out.at(0, 20)[0], 0, 0.02);
    EXPECT_NEAR(out.at(159, 20)[0], 1, 0.02);
}

TEST(CIStretchCrop, IsTheSameInTiles) {
    Image image = filter("CIStretchCrop",
                         {{"inputImage", imageOf(noise(50, 40, 3, true))}, {"inputSize", Numbers{90, 30}}});
    EXPECT_LT(difference(rendered(image, 0, 0, 90, 30), inTiles(image, 0, 0, 90, 30)), placeError);
}
