// CIOpTile, against a reference in double precision.
#include "reference.h"

using namespace reference;

TEST(CIOpTile, ShowsMoreAroundTheMiddles) {
    Picture p = noise(60, 50, 71);
    const Point centre{21.3, 17.9};
    constexpr double angle = 0.4;
    Values values{{"inputImage", imageOf(p)},
                  {"inputCenter", Numbers{centre.x, centre.y}},
                  {"inputScale", 2.5},
                  {"inputWidth", 13.0},
                  {"inputAngle", angle}};
    Image image = filter("CIOpTile", values);
    auto shown = [&](int x, int y) {
        Point q = turned({x + 0.5 - centre.x, y + 0.5 - centre.y}, -angle);
        auto farther = [](double v) { return std::round(v / 13) * 13 + (v - std::round(v / 13) * 13) * 2.5; };
        q = turned({farther(q.x), farther(q.y)}, angle);
        return bilinear(p, centre.x + q.x, centre.y + q.y);
    };
    EXPECT_LT(error(image, filled(-40, -30, 130, 110, shown)), placeError);
    EXPECT_LT(difference(inTiles(image, -40, -30, 130, 110, 16), rendered(image, -40, -30, 130, 110)),
              placeError);
    double reach = 1.5 * 13 / std::sqrt(2);
    EXPECT_LT(std::abs(image->extent().x0 + reach), 1e-9);
    values["inputScale"] = 1.0;
    EXPECT_LT(error(filter("CIOpTile", values), p), floatError);
}
