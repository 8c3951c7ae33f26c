// CILightTunnel, against angles measured on Core Image's picture.
#include "reference.h"

using namespace reference;

namespace {

/// A picture whose colours tell the angle around (150, 150).
Image compass() {
    return imageOf(filled(0, 0, 300, 300, [](int x, int y) {
        double a = std::atan2(y + 0.5 - 150, x + 0.5 - 150);
        return Pixel{0.5 + 0.5 * std::cos(a), 0.5 + 0.5 * std::sin(a), 0, 1};
    }));
}
double angleOf(const Pixel& p) { return std::atan2(p[1] - 0.5, p[0] - 0.5); }

Image tunnel(const Image& image, double radius, double rotation = 0) {
    return filter("CILightTunnel", {{"inputImage", image},
                                    {"inputCenter", Numbers{150, 150}},
                                    {"inputRadius", radius},
                                    {"inputRotation", rotation}});
}

} // namespace

// With radius 100: the turn in degrees of what is seen at a distance from the centre, known to 0.9 degrees.
TEST(CILightTunnel, TurnsTheRimAsCoreImagesPicture) {
    struct {
        int distance;
        double degrees;
    } seen[] = {{104, 36},    {110, 86.25}, {119, 158.25}, {122, 181.25},
                {131, 246.5}, {149, 3.75},  {158, 57},     {167, 107.75}};
    Image image = tunnel(compass(), 100);
    EXPECT_EQ(image->extent(), Rect::infinite());
    Picture out = rendered(image, -50, -50, 400, 400);
    for (auto [distance, degrees] : seen)
        for (double a = 0.1; a < 6; a += 0.7) {
            int x = int(std::floor(150 + distance * std::cos(a)));
            int y = int(std::floor(150 + distance * std::sin(a)));
            double px = x + 0.5 - 150, py = y + 0.5 - 150;
            // The turn changes by up to 9 degrees from a pixel to the next.
            double off = (distance - std::hypot(px, py)) * 100 / (2 * M_PI) / distance;
            double turn = angleOf(out.at(x, y)) - std::atan2(py, px) + off;
            double wrong = std::remainder(turn - degrees * M_PI / 180, 2 * M_PI);
            EXPECT_NEAR(wrong * 180 / M_PI, 0, 0.9) << distance << ' ' << a;
        }
}

TEST(CILightTunnel, KeepsTheInsideOfTheCircle) {
    Picture p = noise(300, 300, 12);
    Picture out = rendered(tunnel(imageOf(p), 100, 1), 80, 80, 140, 140);
    EXPECT_LT(difference(out, part(p, 80, 80, 140, 140)), 1e-6);
    EXPECT_LT(error(tunnel(imageOf(p), 0), p), 1e-6);
}

TEST(CILightTunnel, RotationTurnsTheTunnel) {
    Picture still = rendered(tunnel(compass(), 50), 0, 0, 300, 300);
    Picture turned = rendered(tunnel(compass(), 50, 0.5), 0, 0, 300, 300);
    double turn = std::remainder(angleOf(turned.at(250, 170)) - angleOf(still.at(250, 170)), 2 * M_PI);
    EXPECT_NEAR(turn, 0.5, 1e-3);
}
