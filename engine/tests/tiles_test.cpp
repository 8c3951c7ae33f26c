// Patterns of tiles, against walking: over the side of a piece by that side's move until the piece is
// reached.
#include "reference.h"

using namespace reference;

namespace {

Point turned(Point p, double angle) {
    return {p.x * std::cos(angle) - p.y * std::sin(angle), p.x * std::sin(angle) + p.y * std::cos(angle)};
}

/// A side of a piece, which lies on its left, and where what is to its right comes from.
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

/// How far the filter is from the pattern that `place` makes, in a picture far beyond the piece.
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

constexpr double placeError = 5e-5; // places are kept in single precision

const Point top{0.5, std::sqrt(0.75)};

} // namespace

TEST(Tiles, ParallelogramsAreRepeatedOrMirrored) {
    Point up{std::cos(acute), std::sin(acute)}, far{1 + up.x, up.y};
    std::vector<Side> copies{{{0, 0}, {1, 0}, by(up.x, up.y)},
                             {{1, 0}, far, by(-1, 0)},
                             {far, up, by(-up.x, -up.y)},
                             {up, {0, 0}, by(1, 0)}};
    EXPECT_LT(tileError("CIFourfoldTranslatedTile", walkOver(copies)), placeError);
    // A side's mirror keeps the direction of the other side.
    auto folded = [&](Point p) {
        double t = p.y / up.y, s = p.x - t * up.x;
        auto fold = [](double v) { return std::acos(std::cos(v * M_PI)) / M_PI; };
        return Point{fold(s), fold(t)};
    };
    EXPECT_LT(tileError("CIParallelogramTile", folded), placeError);
    EXPECT_LT(tileError("CIFourfoldReflectedTile",
                        [&](Point p) {
                            Point s = folded(p);
                            return Point{s.x + s.y * up.x, s.y * up.y};
                        }),
              placeError);
}

TEST(Tiles, SquaresGlideTurnAndAreMirrored) {
    auto glide = [](double y) { return [=](Point p) { return Point{-p.x, p.y + y}; }; };
    EXPECT_LT(tileError("CIGlideReflectedTile", walkOver({{{0, 0}, {1, 0}, glide(1)},
                                                          {{1, 0}, {1, 1}, by(-1, 0)},
                                                          {{1, 1}, {0, 1}, glide(-1)},
                                                          {{0, 1}, {0, 0}, by(1, 0)}})),
              placeError);
    EXPECT_LT(tileError("CIFourfoldRotatedTile", walkOver({{{0, 0}, {1, 0}, around({0, 0}, M_PI / 2)},
                                                           {{1, 0}, {1, 1}, around({1, 1}, -M_PI / 2)},
                                                           {{1, 1}, {0, 1}, around({1, 1}, M_PI / 2)},
                                                           {{0, 1}, {0, 0}, around({0, 0}, -M_PI / 2)}})),
              placeError);
    EXPECT_LT(tileError("CIEightfoldReflectedTile", walkOver(mirrors({{0, 0}, {1, 0}, {1, 1}}))), placeError);
}

TEST(Tiles, TrianglesTurnAndAreMirrored) {
    EXPECT_LT(tileError("CITriangleTile", walkOver({{{0, 0}, {1, 0}, around({0.5, 0}, M_PI)},
                                                    {{1, 0}, top, around({0.75, top.y / 2}, M_PI)},
                                                    {top, {0, 0}, around({0.25, top.y / 2}, M_PI)}})),
              placeError);
    EXPECT_LT(tileError("CISixfoldRotatedTile", walkOver({{{0, 0}, {1, 0}, around({0, 0}, M_PI / 3)},
                                                          {{1, 0}, top, around({0.75, top.y / 2}, M_PI)},
                                                          {top, {0, 0}, around({0, 0}, -M_PI / 3)}})),
              placeError);
    EXPECT_LT(tileError("CISixfoldReflectedTile", walkOver(mirrors({{0, 0}, {1, 0}, top}))), placeError);
    EXPECT_LT(tileError("CITwelvefoldReflectedTile", walkOver(mirrors({{0, 0}, {1, 0}, {0.75, top.y / 2}}))),
              placeError);
}

TEST(Tiles, OpTilesShowMoreAroundTheirMiddles) {
    Picture p = noise(60, 50, 71);
    Values values{{"inputImage", imageOf(p)},
                  {"inputCenter", Numbers{21.3, 17.9}},
                  {"inputScale", 2.5},
                  {"inputWidth", 13.0},
                  {"inputAngle", 0.4}};
    Image image = filter("CIOpTile", values);
    auto shown = [&](int x, int y) {
        Point q = turned({x + 0.5 - centre.x, y + 0.5 - centre.y}, -angle);
        auto farther = [](double v) { return std::round(v / 13) * 13 + (v - std::round(v / 13) * 13) * 2.5; };
        q = turned({farther(q.x), farther(q.y)}, angle);
        return bilinear(p, centre.x + q.x, centre.y + q.y);
    };
    EXPECT_LT(error(image, filled(-40, -30, 130, 110, shown)), placeError);
    double reach = 1.5 * 13 / std::sqrt(2);
    EXPECT_LT(std::abs(image->extent().x0 + reach), 1e-9);
    values["inputScale"] = 1.0;
    EXPECT_LT(error(filter("CIOpTile", values), p), floatError);
}

TEST(Tiles, PerspectiveTilesReachTheHorizon) {
    Picture p = noise(20, 16, 72, true);
    // x and y over w = 1 - 0.02 y: the horizon is at y = 50.
    auto seen = [](double x, double y) {
        double w = 1 + 0.02 * y;
        return Numbers{x / w, y / w};
    };
    Image image = filter("CIPerspectiveTile", {{"inputImage", imageOf(p)},
                                               {"inputBottomLeft", seen(0, 0)},
                                               {"inputBottomRight", seen(20, 0)},
                                               {"inputTopRight", seen(20, 16)},
                                               {"inputTopLeft", seen(0, 16)}});
    EXPECT_EQ(image->extent(), Rect::infinite());
    auto within = [](double v, double size) {
        return std::clamp(v - std::floor(v / size) * size, 0.5, size - 0.5);
    };
    Picture expected = filled(-50, -20, 130, 90, [&](int x, int y) {
        double w = 1 - 0.02 * (y + 0.5);
        if (w <= 0) return Pixel{};
        return bilinear(p, within((x + 0.5) / w, 20), within((y + 0.5) / w, 16));
    });
    // A rounding of w on the way through the corners moves what is near the horizon.
    EXPECT_LT(error(image, expected), placeError);
}

TEST(Tiles, AreTheSameInTilesAndReadOnlyTheirPiece) {
    Picture p = noise(60, 50, 73);
    for (const char* name : {"CIFourfoldTranslatedTile", "CISixfoldRotatedTile", "CITwelvefoldReflectedTile",
                             "CIOpTile", "CIPerspectiveTile"}) {
        Values values{{"inputImage", imageOf(p)}, {"inputCenter", Numbers{20, 15}}};
        if (findFilter(name)->findInput("inputWidth")) values["inputWidth"] = 11.0;
        Image image = filter(name, values);
        Picture whole = rendered(image, -20, -20, 100, 90);
        EXPECT_LT(difference(whole, inTiles(image, -20, -20, 100, 90, 16)), placeError) << name;
    }
    Image image =
        filter("CIFourfoldRotatedTile",
               {{"inputImage", imageOf(p)}, {"inputCenter", Numbers{20, 15}}, {"inputWidth", 11.0}});
    EXPECT_EQ(image->regionOfInterest(0, {500, 500, 600, 600}), (Rect{19, 14, 32, 27}));
}
