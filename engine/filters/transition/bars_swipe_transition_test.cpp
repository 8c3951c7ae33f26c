// CIBarsSwipeTransition, by where Core Image's pictures have its bars.
#include "picture_samples.h"

using namespace reference;

namespace {

/// How far the bar at x has been shifted upwards: green is how far up a pixel of the picture lies.
Image swiped(double width, double height, Values more) {
    Picture ramp = filled(0, 0, int(width), int(height), [=](int, int y) {
        return Pixel{0, (y + 0.5) / height, 0, 1};
    });
    Values values{{"inputImage", imageOf(ramp)}};
    values.merge(more);
    return filter("CIBarsSwipeTransition", values);
}

} // namespace

TEST(CIBarsSwipeTransition, ShiftsBarsAsCoreImageDoes) {
    // A picture of 500 x 267 above one of 640 x 478, by default, at time 0.5: x, and how far up.
    Image image = swiped(
        500, 267, {{"inputTargetImage", crop(constant({1, 0, 0, 1}), {0, 0, 640, 478})}, {"inputTime", 0.5}});
    EXPECT_EQ(image->extent(), (Rect{0, 0, 500, 267}));
    const std::pair<int, int> bars[] = {{5, 0}, {215, 0}, {245, 9}, {275, 38}, {305, 87}, {335, 157}};
    for (auto [x, up] : bars) {
        Pixel p = rendered(image, x, 240, 1, 1).get(x, 240);
        EXPECT_NEAR(267 * p[1], 240.5 - up, 0.8) << x;
    }
    // The next one has left but for its last rows.
    EXPECT_EQ(rendered(image, 365, 240, 1, 1).get(365, 240)[0], 1);
    EXPECT_EQ(rendered(image, 495, 100, 1, 1).get(495, 100)[0], 1);
}

TEST(CIBarsSwipeTransition, SlidesAlongSlantedBars) {
    // In a square of 1500 at angle 3 and time 0.60719, 38.2072 bars 60 wide have begun: the one that holds
    // this pixel has gone the square of how many that is after its own.
    double dx = std::cos(3.0), dy = std::sin(3.0), first = 1500 * dx;
    int x = 400, y = 700, bar = int(std::floor(((x + 0.5) * dx + (y + 0.5) * dy - first) / 60));
    Image image =
        swiped(1500, 1500,
               {{"inputAngle", 3.0}, {"inputWidth", 60.0}, {"inputBarOffset", 1.0}, {"inputTime", 0.60719}});
    double gone = std::pow(38.2072 - bar, 2);
    EXPECT_NEAR(1500 * rendered(image, x, y, 1, 1).get(x, y)[1], y + 0.5 + gone * dx, 0.1);
}

TEST(CIBarsSwipeTransition, LeavesTheTarget) {
    Picture p = noise(60, 40, 112), q = noise(60, 40, 113, true);
    for (auto [angle, offset] : {std::pair{M_PI, 3.0}, {0.7, 3.0}, {0.7, 90.0}, {3.0, 1.0}, {1.5, 20.0}}) {
        auto at = [&, angle = angle, offset = offset](double time) {
            return filter("CIBarsSwipeTransition", {{"inputImage", imageOf(p)},
                                                    {"inputTargetImage", imageOf(q)},
                                                    {"inputAngle", angle},
                                                    {"inputWidth", 8.0},
                                                    {"inputBarOffset", offset},
                                                    {"inputTime", time}});
        };
        EXPECT_LT(error(at(1), q), floatError);
        EXPECT_LT(error(at(0), filled(0, 0, 60, 40,
                                      [&](int x, int y) {
                                          Pixel out = p.get(x, y);
                                          for (int c = 0; c < 4; ++c)
                                              out[c] += q.get(x, y)[c] * (1 - p.get(x, y)[3]);
                                          return out;
                                      })),
                  floatError);
        expectSameInTiles(at(0.5), 0, 0, 60, 40, 1e-4);
    }
}
