// CIRoundedRectangleGenerator: the area that it covers.
#include "reference.h"

using namespace reference;

namespace {

Picture rectangle(double radius) {
    Image image = filter("CIRoundedRectangleGenerator", {{"inputExtent", Numbers{10, 20, 60, 40}},
                                                         {"inputRadius", radius},
                                                         {"inputColor", Color{1, 0, 0, 1}}});
    EXPECT_EQ(image->extent(), (Rect{10, 20, 70, 60}));
    return rendered(image, 0, 0, 80, 80);
}
double area(const Picture& p) {
    double sum = 0;
    for (const Pixel& q : p.pixels) sum += q[3];
    return sum;
}

} // namespace

TEST(CIRoundedRectangleGenerator, IsARectangleWithoutRadius) {
    Picture out = rectangle(0);
    EXPECT_NEAR(area(out), 60 * 40, 1e-3);
    EXPECT_NEAR(out.at(10, 20)[0], 1, 1e-6);
}

TEST(CIRoundedRectangleGenerator, LosesItsCorners) {
    for (double radius : {5.0, 12.0, 20.0}) {
        Picture out = rectangle(radius);
        EXPECT_NEAR(area(out), 60 * 40 - (4 - M_PI) * radius * radius, 1.5) << radius;
        EXPECT_EQ(out.at(10, 20)[3], 0) << radius;
        EXPECT_NEAR(out.at(40, 20)[3], 1, 1e-6) << radius;
    }
    // A radius beyond the half of a side is that half.
    EXPECT_EQ(difference(rectangle(20), rectangle(500)), 0);
}
