// CIStraightenFilter, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIStraightenFilter, FillsItsFrame) {
    Picture ramp = filled(0, 0, 60, 40, [](int x, int y) {
        return Pixel{(x + 0.5) / 60, (y + 0.5) / 40, 0.5, 1};
    });
    for (double angle : {0.3, -1.1, 2.0}) {
        Image image = filter("CIStraightenFilter", {{"inputImage", imageOf(ramp)}, {"inputAngle", angle}});
        EXPECT_EQ(image->extent(), (Rect{0, 0, 60, 40}));
        // The smallest scale at which no corner of the frame lies outside of the picture.
        double scale = 0;
        for (double sign : {-1., 1.}) {
            double x = 30 * std::cos(angle) + sign * 20 * std::sin(angle);
            double y = -30 * std::sin(angle) + sign * 20 * std::cos(angle);
            scale = std::max({scale, std::abs(x) / 30, std::abs(y) / 20});
        }
        Picture got = rendered(image, 0, 0, 60, 40);
        for (int y = 0; y < 40; ++y)
            for (int x = 0; x < 60; ++x) {
                double dx = (x + 0.5 - 30) / scale, dy = (y + 0.5 - 20) / scale;
                double u = 30 + dx * std::cos(angle) + dy * std::sin(angle);
                double v = 20 - dx * std::sin(angle) + dy * std::cos(angle);
                // Within half a pixel of the edge of the picture there is only the edge.
                EXPECT_NEAR(got.get(x, y)[0], std::clamp(u, 0.5, 59.5) / 60, 1e-4);
                EXPECT_NEAR(got.get(x, y)[1], std::clamp(v, 0.5, 39.5) / 40, 1e-4);
                EXPECT_NEAR(got.get(x, y)[3], 1, 1e-5);
            }
    }
}
