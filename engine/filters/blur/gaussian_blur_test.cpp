// CIGaussianBlur, against a reference in double precision.
#include "reference.h"

using namespace reference;

class CIGaussianBlur : public testing::TestWithParam<double> {};

TEST_P(CIGaussianBlur, IsATrueGaussian) {
    double sigma = GetParam();
    // Edges are hardest: a block next to nothing, with stripes in it.
    Picture p = filled(3, -2, 90, 70, [](int x, int y) {
        return x % 7 < 4 ? Pixel{1, 0, 1, 1} : Pixel{0, y / 70., 0, 1};
    });
    Image image = filter("CIGaussianBlur", {{"inputImage", imageOf(p)}, {"inputRadius", sigma}});
    Rect e = image->extent();
    EXPECT_EQ(e, Rect({3, -2, 93, 68}).grown(std::ceil(3 * sigma), std::ceil(3 * sigma)));
    Picture truth = trueGaussian(p, sigma);
    EXPECT_LT(error(image, part(truth, int(e.x0), int(e.y0), int(e.width()), int(e.height()))), halfStep);
}

TEST_P(CIGaussianBlur, FoldsNoFineStripesOver) {
    // A little wider than a pixel: where a picture is reduced, these come nearest to coming out as wide ones.
    Picture p = filled(0, 0, 90, 70, [](int x, int y) {
        double wave = 0.5 + 0.5 * std::cos(2.795 * x), slanted = 0.5 + 0.5 * std::cos(2.795 * (x + y));
        return Pixel{wave, slanted, 0.5 + 0.5 * std::cos(2.795 * y), 1};
    });
    Image image = filter("CIGaussianBlur", {{"inputImage", imageOf(p)}, {"inputRadius", GetParam()}});
    EXPECT_LT(error(image, part(trueGaussian(p, GetParam()), 0, 0, 90, 70)), halfStep);
}

INSTANTIATE_TEST_SUITE_P(Radii, CIGaussianBlur,
                         testing::Values(0.5, 1.0, 2.7, 4.9, 5.0, 7.9, 8.0, 10.0, 12.3, 20.0, 33.0, 60.0));
