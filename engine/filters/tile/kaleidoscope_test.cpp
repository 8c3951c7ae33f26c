// CIKaleidoscope, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIKaleidoscope, MirrorsASector) {
    Picture p = noise(60, 50, 42);
    double count = 5, turn = 0.3, sector = 2 * M_PI / count;
    Picture expected = filled(-60, -60, 150, 150, [&](int x, int y) {
        double px = x + 0.5 - 20, py = y + 0.5 - 15;
        double angle = std::fmod(std::atan2(py, px) - turn + 100 * sector + sector / 2, sector) - sector / 2;
        double radius = std::hypot(px, py), a = turn + std::abs(angle);
        return bilinear(p, 20 + radius * std::cos(a), 15 + radius * std::sin(a));
    });
    Image image = filter("CIKaleidoscope", {{"inputImage", imageOf(p)},
                                            {"inputCenter", Numbers{20, 15}},
                                            {"inputCount", count},
                                            {"inputAngle", turn}});
    EXPECT_LT(error(image, expected), 5e-5); // places are kept in single precision
    // The square around the circle through the farthest corner, (60, 50).
    double radius = std::hypot(40, 35);
    EXPECT_EQ(image->extent(), (Rect{20 - radius, 15 - radius, 20 + radius, 15 + radius}));
}
