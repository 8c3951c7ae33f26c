// CIPerspectiveTransform and CIPerspectiveTransformWithExtent, against references in double precision.
#include "reference.h"

using namespace reference;

TEST(CIPerspectiveTransform, BringsTheCornersToFourPoints) {
    Picture p = noise(50, 40, 44);
    p.x0 = 6, p.y0 = -4;
    // A map and its inverse, both written out.
    const double k[3][3] = {{1.1, 0.2, 5}, {-0.1, 0.9, 3}, {0.002, -0.001, 1}};
    auto forth = [&](double x, double y) {
        double w = k[2][0] * x + k[2][1] * y + k[2][2];
        return Numbers{(k[0][0] * x + k[0][1] * y + k[0][2]) / w, (k[1][0] * x + k[1][1] * y + k[1][2]) / w};
    };
    auto back = [&](double x, double y) {
        // The x and y whose images these are, from two linear equations.
        double a = k[0][0] - x * k[2][0], b = k[0][1] - x * k[2][1], e = x * k[2][2] - k[0][2];
        double c = k[1][0] - y * k[2][0], d = k[1][1] - y * k[2][1], f = y * k[2][2] - k[1][2];
        double det = a * d - b * c;
        return Point{(e * d - b * f) / det, (a * f - e * c) / det};
    };
    Values values{{"inputImage", imageOf(p)},
                  {"inputBottomLeft", forth(6, -4)},
                  {"inputBottomRight", forth(56, -4)},
                  {"inputTopRight", forth(56, 36)},
                  {"inputTopLeft", forth(6, 36)}};
    Image image = filter("CIPerspectiveTransform", values);
    // Whole pixels of the result.
    Rect inside = image->extent().grown(-1, -1).integral();
    Picture expected =
        filled(int(inside.x0), int(inside.y0), int(inside.width()), int(inside.height()), [&](int x, int y) {
            Point s = back(x + 0.5, y + 0.5);
            return bilinear(p, s.x, s.y);
        });
    EXPECT_LT(error(image, expected), floatError);
    EXPECT_NEAR(image->extent().x0, forth(6, -4)[0], 1e-9);
    EXPECT_NEAR(image->extent().y1, forth(6, 36)[1], 1e-9);
    // Three corners on a line make no quadrilateral, nor do all on one point.
    values["inputTopRight"] = values["inputTopLeft"] = values["inputBottomRight"];
    EXPECT_TRUE(filter("CIPerspectiveTransform", values)->extent().isEmpty());
}

TEST(CIPerspectiveTransformWithExtent, MovesAPartAndWhatIsAround) {
    // Onto a rectangle, the picture is merely moved.
    Picture p = noise(40, 30, 104);
    Picture expected = filled(85, 185, 55, 45, [&](int x, int y) { return p.get(x - 100 + 9, y - 200 + 7); });
    Values values{{"inputImage", imageOf(p)},
                  {"inputExtent", Numbers{9, 7, 16, 12}},
                  {"inputBottomLeft", Numbers{100, 200}},
                  {"inputBottomRight", Numbers{116, 200}},
                  {"inputTopRight", Numbers{116, 212}},
                  {"inputTopLeft", Numbers{100, 212}}};
    Image moved = filter("CIPerspectiveTransformWithExtent", values);
    EXPECT_LT(error(moved, expected), 5 * floatError);
    EXPECT_NEAR(moved->extent().x0, 91, 1e-9);
    EXPECT_NEAR(moved->extent().y1, 223, 1e-9);
    // A part of an endless picture, and a part so small that the picture reaches the horizon.
    values["inputImage"] = constant({1, 1, 1, 1});
    EXPECT_TRUE(filter("CIPerspectiveTransformWithExtent", values)->extent().isInfinite());
    values["inputImage"] = imageOf(p);
    values["inputTopRight"] = Numbers{120, 212};
    values["inputTopLeft"] = Numbers{96, 212};
    EXPECT_FALSE(filter("CIPerspectiveTransformWithExtent", values)->extent().isInfinite());
    values["inputExtent"] = Numbers{9, 1, 16, 4};
    EXPECT_TRUE(filter("CIPerspectiveTransformWithExtent", values)->extent().isInfinite());
    // The whole of it is what the filter without an extent makes.
    values["inputExtent"] = Numbers{0, 0, 40, 30};
    values["inputTopLeft"] = Numbers{100, 212};
    values["inputTopRight"] = Numbers{130, 222};
    Picture whole = rendered(filter("CIPerspectiveTransform", values), 95, 195, 40, 30);
    EXPECT_LT(error(filter("CIPerspectiveTransformWithExtent", values), whole), 1e-7);
    EXPECT_GT(whole.get(110, 205)[3] + whole.get(111, 206)[3] + whole.get(112, 207)[3], 0);
}
