// CIHeightFieldFromMask, against pixels of Core Image and a reference in double precision.
#include "reference.h"

using namespace reference;

namespace {

/// A letter H that leans, as it is in a mask that Core Image made a height field of: its corners.
constexpr double letter[][2] = {{198.0, 592.0}, {256.1, 584.7}, {231.4, 512.2}, {298.1, 503.8},
                                {323.2, 576.8}, {381.3, 570.0}, {316.8, 379.3}, {258.3, 386.2},
                                {283.9, 460.9}, {216.6, 468.5}, {191.4, 394.1}, {132.9, 401.1}};

bool inLetter(double x, double y) {
    bool inside = false;
    for (std::size_t i = 0, j = std::size(letter) - 1; i < std::size(letter); j = i++) {
        const auto &p = letter[i], &q = letter[j];
        if ((p[1] > y) != (q[1] > y) && x < (q[0] - p[0]) * (y - p[1]) / (q[1] - p[1]) + p[0])
            inside = !inside;
    }
    return inside;
}

} // namespace

TEST(CIHeightFieldFromMask, IsAsCoreImageMakesIt) {
    // Pixels of the left half of the letter, away from those that follow, with the 8-bit grays that Core
    // Image gave them for the radius 25.
    const struct {
        int x, y, gray;
    } samples[] = {{198, 576, 137}, {224, 576, 167}, {198, 554, 187}, {224, 554, 199}, {198, 532, 211},
                   {224, 532, 203}, {198, 510, 224}, {224, 510, 212}, {172, 488, 184}, {198, 488, 228},
                   {224, 488, 220}, {250, 488, 206}, {172, 466, 204}, {198, 466, 215}, {172, 444, 208},
                   {198, 444, 184}, {146, 422, 141}, {172, 422, 194}, {198, 422, 125}, {172, 400, 128}};
    Picture mask = filled(30, 270, 460, 430, [](int x, int y) {
        double v = 0;
        for (int k = 0; k < 16; ++k)
            v += inLetter(x + 0.125 + 0.25 * (k % 4), y + 0.125 + 0.25 * (k / 4)) / 16.;
        return Pixel{v, v, v, 1};
    });
    Image image = filter("CIHeightFieldFromMask", {{"inputImage", imageOf(mask)}, {"inputRadius", 25.0}});
    EXPECT_EQ(image->extent(), (Rect{30, 270, 490, 700}));
    double sum = 0;
    for (const auto& sample : samples) {
        double got = 255 * coded(rendered(image, sample.x, sample.y, 1, 1).get(sample.x, sample.y)[0]);
        // The corners were found to a quarter of a pixel.
        EXPECT_NEAR(got, sample.gray, 4) << sample.x << ' ' << sample.y;
        sum += std::abs(got - sample.gray);
    }
    EXPECT_LT(sum / std::size(samples), 1.5);
}

TEST(CIHeightFieldFromMask, IsABlurCutOutAgainAndAgain) {
    Picture mask = noise(40, 30, 100, true);
    Picture field = mask;
    for (double sigma : {4.0, 2.0, 1.0}) {
        Picture wide = filled(-25, -25, 90, 80, [&](int x, int y) { return clamped(field, x, y); });
        Picture blurred = trueGaussian(wide, sigma);
        field = filled(0, 0, 40, 30, [&](int x, int y) {
            Pixel out = mask.get(x, y);
            for (int c = 0; c < 3; ++c) out[c] *= blurred.get(x, y)[c];
            return out;
        });
    }
    Image image = filter("CIHeightFieldFromMask", {{"inputImage", imageOf(mask)}, {"inputRadius", 4.0}});
    EXPECT_LT(error(image, field), halfStep);
    EXPECT_LT(difference(inTiles(image, 0, 0, 40, 30), field), halfStep);
    Image unchanged = imageOf(mask);
    EXPECT_EQ(filter("CIHeightFieldFromMask", {{"inputImage", unchanged}, {"inputRadius", 0.0}}), unchanged);
}
