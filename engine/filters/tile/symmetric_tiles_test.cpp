// Symmetric tiles, against walking: over the side of a piece by that side's move until the piece is reached.
// And against pictures of Core Image's, as places whose pixels are copies of pixels of the input.
#include "reference.h"

using namespace reference;

namespace {

/// A side of a piece, which lies on its left, and the move that brings what is on its right nearer to the
/// piece.
struct Side {
    Point from, to;
    std::function<Point(Point)> move;

    bool isRight(Point p) const {
        return (to.x - from.x) * (p.y - from.y) - (to.y - from.y) * (p.x - from.x) < 0;
    }
};

std::function<Point(Point)> by(double x, double y) {
    return [=](Point p) { return Point{p.x + x, p.y + y}; };
}
std::function<Point(Point)> around(Point c, double angle) {
    return [=](Point p) {
        Point q = turned({p.x - c.x, p.y - c.y}, angle);
        return Point{c.x + q.x, c.y + q.y};
    };
}
std::function<Point(Point)> mirror(Point a, Point b) {
    return [=](Point p) {
        double angle = std::atan2(b.y - a.y, b.x - a.x);
        Point q = turned({p.x - a.x, p.y - a.y}, -angle);
        q = turned({q.x, -q.y}, angle);
        return Point{a.x + q.x, a.y + q.y};
    };
}

Point walked(Point p, const std::vector<Side>& sides) {
    for (int step = 0; step < 10000; ++step) {
        auto out = std::find_if(sides.begin(), sides.end(), [&](const Side& s) { return s.isRight(p); });
        if (out == sides.end()) return p;
        p = out->move(p);
    }
    ADD_FAILURE() << "does not arrive";
    return p;
}

std::vector<Side> mirrors(const std::vector<Point>& corners) {
    std::vector<Side> sides;
    for (std::size_t i = 0; i < corners.size(); ++i) {
        Point a = corners[i], b = corners[(i + 1) % corners.size()];
        sides.push_back({a, b, mirror(a, b)});
    }
    return sides;
}

const Point centre{21.3, 17.9};
constexpr double width = 13, angle = 0.4, acute = 1.1;

/// The error of a filter against the pattern that `place` makes, also far beyond the piece.
double tileError(const char* name, const std::function<Point(Point)>& place) {
    Picture p = noise(60, 50, 70);
    Values values{{"inputImage", imageOf(p)},
                  {"inputCenter", Numbers{centre.x, centre.y}},
                  {"inputWidth", width},
                  {"inputAngle", angle}};
    if (findFilter(name)->findInput("inputAcuteAngle")) values["inputAcuteAngle"] = acute;
    Image image = filter(name, values);
    EXPECT_EQ(image->extent(), Rect::infinite());
    return error(image, filled(-40, -30, 130, 110, [&](int x, int y) {
                     Point q = turned({x + 0.5 - centre.x, y + 0.5 - centre.y}, -angle);
                     q = place({q.x / width, q.y / width});
                     q = turned({q.x * width, q.y * width}, angle);
                     return bilinear(p, centre.x + q.x, centre.y + q.y);
                 }));
}

std::function<Point(Point)> walkOver(std::vector<Side> sides) {
    return [=](Point p) { return walked(p, sides); };
}

const Point top{0.5, std::sqrt(0.75)};
const double root3 = std::sqrt(3);

struct Copy {
    int x, y, fromX, fromY;
};

/// With the defaults, pixel (x, y) of Core Image's picture is pixel (fromX, fromY) of its input.
void expectCopies(const char* name, const std::vector<Copy>& copies) {
    Picture places = filled(0, 0, 300, 300, [](int x, int y) { return Pixel{x / 300., y / 300., 0, 1}; });
    Picture out = rendered(filter(name, {{"inputImage", imageOf(places)}}), 0, 0, 400, 300);
    for (auto [x, y, fromX, fromY] : copies) {
        EXPECT_NEAR(out.get(x, y)[0] * 300, fromX, 0.02) << name << ' ' << x << ' ' << y;
        EXPECT_NEAR(out.get(x, y)[1] * 300, fromY, 0.02) << name << ' ' << x << ' ' << y;
    }
}

/// The sides of the parallelogram: of length 1, the second at the acute angle.
const Point up{std::cos(acute), std::sin(acute)};

/// Ways along the two sides, mirrored at multiples of `length`.
Point folded(Point p, double length) {
    auto fold = [=](double v) { return std::acos(std::cos(v / length * M_PI)) / M_PI * length; };
    double t = p.y / up.y;
    return {fold(p.x - t * up.x), fold(t)};
}

} // namespace

TEST(CIFourfoldTranslatedTile, RepeatsAParallelogram) {
    Point far{1 + up.x, up.y};
    std::vector<Side> copies{{{0, 0}, {1, 0}, by(up.x, up.y)},
                             {{1, 0}, far, by(-1, 0)},
                             {far, up, by(-up.x, -up.y)},
                             {up, {0, 0}, by(1, 0)}};
    EXPECT_LT(tileError("CIFourfoldTranslatedTile", walkOver(copies)), placeError);
}

TEST(CIFourfoldReflectedTile, MirrorsAParallelogram) {
    // A side's mirror keeps the direction of the other side.
    auto place = [](Point p) {
        Point s = folded(p, 0.5);
        return Point{s.x + s.y * up.x, s.y * up.y};
    };
    EXPECT_LT(tileError("CIFourfoldReflectedTile", place), placeError);
}

TEST(CIParallelogramTile, PushesASquareOver) {
    EXPECT_LT(tileError("CIParallelogramTile", [](Point p) { return folded(p, 1); }), placeError);
}

TEST(CIGlideReflectedTile, RepeatsASquare) {
    EXPECT_LT(tileError("CIGlideReflectedTile", walkOver({{{0, 0}, {1, 0}, by(0, 1)},
                                                          {{1, 0}, {1, 1}, by(-1, 0)},
                                                          {{1, 1}, {0, 1}, by(0, -1)},
                                                          {{0, 1}, {0, 0}, by(1, 0)}})),
              placeError);
    expectCopies("CIGlideReflectedTile", {{120, 79, 220, 179},
                                          {269, 201, 169, 201},
                                          {381, 9, 181, 209},
                                          {83, 23, 183, 223},
                                          {156, 17, 156, 217},
                                          {204, 297, 204, 197}});
}

TEST(CIFourfoldRotatedTile, TurnsAQuarterOfASquare) {
    EXPECT_LT(tileError("CIFourfoldRotatedTile", walkOver({{{0, 0}, {0.5, -0.5}, around({0, 0}, M_PI / 2)},
                                                           {{0.5, -0.5}, {0.5, 0.5}, around({0.5, 0}, M_PI)},
                                                           {{0.5, 0.5}, {0, 0}, around({0, 0}, -M_PI / 2)}})),
              placeError);
}

TEST(CIEightfoldReflectedTile, MirrorsAnEighthOfASquare) {
    EXPECT_LT(tileError("CIEightfoldReflectedTile", walkOver(mirrors({{0, 0}, {0.5, 0}, {0.5, 0.5}}))),
              placeError);
    expectCopies("CIEightfoldReflectedTile", {{123, 280, 180, 176},
                                              {68, 191, 191, 168},
                                              {311, 244, 188, 155},
                                              {312, 8, 191, 187},
                                              {242, 134, 165, 157},
                                              {329, 79, 179, 170}});
}

TEST(CITriangleTile, TurnsATriangleByHalves) {
    EXPECT_LT(tileError("CITriangleTile", walkOver({{{0, 0}, {1, 0}, around({0.5, 0}, M_PI)},
                                                    {{1, 0}, top, around({0.75, top.y / 2}, M_PI)},
                                                    {top, {0, 0}, around({0.25, top.y / 2}, M_PI)}})),
              placeError);
}

TEST(CISixfoldRotatedTile, TurnsASixthOfAHexagon) {
    Point right{1 / root3, 0}, above{root3 / 4, 0.25}, below{root3 / 4, -0.25};
    EXPECT_LT(tileError("CISixfoldRotatedTile", walkOver({{{0, 0}, below, around({0, 0}, M_PI / 3)},
                                                          {below, right, around(right, -2 * M_PI / 3)},
                                                          {right, above, around(right, 2 * M_PI / 3)},
                                                          {above, {0, 0}, around({0, 0}, -M_PI / 3)}})),
              placeError);
    expectCopies("CISixfoldRotatedTile", {{189, 51, 189, 151},
                                          {138, 147, 161, 152},
                                          {175, 162, 175, 162},
                                          {191, 130, 191, 130},
                                          {103, 64, 196, 135},
                                          {129, 139, 170, 160},
                                          {193, 237, 193, 137}});
}

TEST(CISixfoldReflectedTile, MirrorsATriangleBesideTheCentre) {
    double side = 1 / root3;
    EXPECT_LT(
        tileError("CISixfoldReflectedTile", walkOver(mirrors({{side, 0}, {2 * side, 0}, {1.5 * side, 0.5}}))),
        placeError);
}

TEST(CITwelvefoldReflectedTile, MirrorsATwelfthOfAHexagon) {
    EXPECT_LT(tileError("CITwelvefoldReflectedTile",
                        walkOver(mirrors({{0, 0}, {1 / root3, 0}, {root3 / 4, 0.25}}))),
              placeError);
}

TEST(SymmetricTiles, AreTheSameInTilesAndReadOnlyTheirPiece) {
    Picture p = noise(60, 50, 73);
    for (const char* name :
         {"CIFourfoldTranslatedTile", "CISixfoldRotatedTile", "CITwelvefoldReflectedTile"}) {
        Image image = filter(
            name, {{"inputImage", imageOf(p)}, {"inputCenter", Numbers{20, 15}}, {"inputWidth", 11.0}});
        Picture whole = rendered(image, -20, -20, 100, 90);
        EXPECT_LT(difference(whole, inTiles(image, -20, -20, 100, 90, 16)), placeError) << name;
    }
    Values values{{"inputImage", imageOf(p)}, {"inputCenter", Numbers{20, 15}}, {"inputWidth", 10.0}};
    Image image = filter("CIFourfoldRotatedTile", values);
    EXPECT_EQ(image->regionOfInterest(0, {500, 500, 600, 600}), (Rect{19, 9, 26, 21}));
    // All of the piece counts when it is turned.
    values["inputAngle"] = M_PI / 4;
    Rect turned = filter("CIFourfoldRotatedTile", values)->regionOfInterest(0, {500, 500, 600, 600});
    EXPECT_NEAR(turned.x1, 20 + 5 * std::sqrt(2) + 1, 1e-9);
    EXPECT_NEAR(turned.y1, 15 + 5 * std::sqrt(2) + 1, 1e-9);
}
