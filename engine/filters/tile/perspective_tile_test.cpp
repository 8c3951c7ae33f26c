// CIPerspectiveTile, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIPerspectiveTile, ReachesTheHorizon) {
    Picture p = noise(20, 16, 72, true);
    // x and y over w = 1 - 0.02 y: the horizon is at y = 50.
    auto seen = [](double x, double y) {
        double w = 1 + 0.02 * y;
        return Numbers{x / w, y / w};
    };
    Image image = filter("CIPerspectiveTile", {{"inputImage", imageOf(p)},
                                               {"inputBottomLeft", seen(0.5, 0.5)},
                                               {"inputBottomRight", seen(19.5, 0.5)},
                                               {"inputTopRight", seen(19.5, 15.5)},
                                               {"inputTopLeft", seen(0.5, 15.5)}});
    EXPECT_EQ(image->extent(), Rect::infinite());
    auto within = [](double v, double size) { return v - std::floor((v - 0.5) / (size - 1)) * (size - 1); };
    Picture expected = filled(-50, -20, 130, 90, [&](int x, int y) {
        double w = 1 - 0.02 * (y + 0.5);
        if (w <= 0) return Pixel{};
        return bilinear(p, within((x + 0.5) / w, 20), within((y + 0.5) / w, 16));
    });
    // The corners round w a little, which shows near the horizon.
    EXPECT_LT(error(image, expected), placeError);
    EXPECT_LT(difference(inTiles(image, -50, -20, 130, 90, 16), rendered(image, -50, -20, 130, 90)),
              placeError);
}
