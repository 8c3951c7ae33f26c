// CIVignette, against what Core Image's picture of intensity 2 and radius 10 fits.
#include "reference.h"

using namespace reference;

namespace {

/// What is left of white so far to the right of the middle of a picture of 638 x 475 pixels.
double left(double distance, double intensity, double radius) {
    Image white = crop(constant({1, 1, 1, 1}), {0, 0, 638, 475});
    Image image =
        filter("CIVignette", {{"inputImage", white}, {"inputIntensity", intensity}, {"inputRadius", radius}});
    int x = static_cast<int>(319 + distance);
    return rendered(image, x, 237, 1, 1).at(x, 237)[0];
}

} // namespace

TEST(CIVignette, FallsOffAsInTheKnownPicture) {
    for (double distance : {0, 100, 200, 300}) {
        double r = distance + 0.5;
        EXPECT_NEAR(left(distance, 2, 10), std::pow(1 - r * r / (506 * 506), 4.8), 0.002) << distance;
    }
}

TEST(CIVignette, GrowsWithIntensityAndRadius) {
    EXPECT_EQ(left(300, 0, 1), 1);
    EXPECT_EQ(left(300, 1, 0), 1);
    EXPECT_GT(left(300, 0.5, 1), left(300, 1, 1));
    EXPECT_GT(left(300, 1, 1), left(300, 1, 2));
    EXPECT_GT(left(300, 1, 1), 0.5) << "the standard radius is gentle";
    EXPECT_NEAR(left(300, -1, 1) * left(300, 1, 1), 1, 1e-4) << "a negative intensity brightens";
}
