// CIMotionBlur, against a reference in double precision.
#include "reference.h"

using namespace reference;

namespace {

/// The mean of weighted readings along a line through each pixel.
Picture along(const Picture& p, double sigma, double angle, double reach, int grown) {
    return filled(p.x0 - grown, p.y0 - grown, p.width + 2 * grown, p.height + 2 * grown, [&](int x, int y) {
        Pixel out{};
        double sum = 0;
        for (double k = -reach; k <= reach; ++k) {
            double weight = std::exp(-0.5 * k * k / (sigma * sigma));
            Pixel q = bilinear(p, x + 0.5 + k * std::cos(angle), y + 0.5 + k * std::sin(angle));
            for (int c = 0; c < 4; ++c) out[c] += weight * q[c];
            sum += weight;
        }
        for (double& v : out) v /= sum;
        return out;
    });
}

} // namespace

TEST(CIMotionBlur, IsAGaussianAlongALine) {
    Picture p = noise(44, 36, 82);
    for (double angle : {0.0, 0.7, 2.9, -1.2}) {
        double sigma = 4.5;
        Values values{{"inputImage", imageOf(p)}, {"inputRadius", sigma}, {"inputAngle", angle}};
        Image image = filter("CIMotionBlur", values);
        Picture expected = along(p, sigma, angle, 14, 20);
        EXPECT_LT(error(image, expected), floatError) << angle;
        EXPECT_LT(difference(inTiles(image, -20, -20, 84, 76), expected), floatError) << angle;
    }
    // Nothing goes across.
    Image image = filter("CIMotionBlur", {{"inputImage", imageOf(p)}});
    EXPECT_EQ(image->extent().y0, 0);
    EXPECT_EQ(image->extent().y1, 36);
    EXPECT_LT(image->extent().x0, -50);
}

TEST(CIMotionBlur, IsNoLessAGaussianWhenLong) {
    Picture rough = noise(60, 40, 83), smooth = trueGaussian(rough, 3);
    for (double sigma : {8.0, 20.0, 51.0}) {
        int reach = int(4 * sigma);
        for (double angle : {0.0, 1.5707963267948966}) {
            Values values{{"inputImage", imageOf(rough)}, {"inputRadius", sigma}, {"inputAngle", angle}};
            Picture expected = along(rough, sigma, angle, reach, 10);
            EXPECT_LT(error(filter("CIMotionBlur", values), expected), halfStep) << sigma << ' ' << angle;
        }
        // On slanted lines, reading between pixels smooths a little.
        Values values{{"inputImage", imageOf(smooth)}, {"inputRadius", sigma}, {"inputAngle", 0.5}};
        EXPECT_LT(error(filter("CIMotionBlur", values), along(smooth, sigma, 0.5, reach, 10)), 2 * halfStep)
            << sigma;
    }
}

TEST(CIMotionBlur, IsAsWideAsCoreImages) {
    // Alpha at the left edge of an opaque picture 660 pixels wide that Core Image blurred with radius 20 at 3
    // radians: pixels from the edge, and alpha there as a share of the way from the least in that row, 20 of
    // 255, to the most, 253.
    const struct {
        int x;
        double alpha;
    } samples[] = {{-36, 0.030}, {-24, 0.107}, {-18, 0.180}, {-12, 0.275}, {-6, 0.382},
                   {0, 0.502},   {6, 0.627},   {12, 0.738},  {18, 0.828},  {30, 0.944}};
    Image opaque = crop(constant({1, 1, 1, 1}), {0, -300, 660, 300});
    Values values{{"inputImage", opaque}, {"inputRadius", 20.0}, {"inputAngle", 3.0}};
    Image image = filter("CIMotionBlur", values);
    for (const auto& sample : samples)
        EXPECT_NEAR(rendered(image, sample.x, 0, 1, 1).get(sample.x, 0)[3], sample.alpha, 0.012) << sample.x;
}
