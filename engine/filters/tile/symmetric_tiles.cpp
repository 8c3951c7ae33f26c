// CIFourfoldTranslatedTile, CIFourfoldReflectedTile, CIParallelogramTile, CIGlideReflectedTile,
// CIFourfoldRotatedTile, CIEightfoldReflectedTile, CITriangleTile, CISixfoldRotatedTile,
// CISixfoldReflectedTile, CITwelvefoldReflectedTile: one piece of a picture that is moved, turned or mirrored
// without end.
//
// Eightfold, glide and the three of sixths are fitted to pictures of Core Image's (mean residual 0.16 of 255
// or none). All of those repeat themselves after one width, so the fourfold ones do here, too; no picture of
// these, of the triangle and of the parallelogram is known.
#include "filter.h"
#include "kernel.h"

#include <cmath>

namespace engine {

namespace {

using simd::nearest;

constexpr double root3 = 1.7320508075688772;

SIMD_INLINE inline double wholeBelow(double x) {
    double n = nearest(x);
    return n > x ? n - 1 : n;
}
/// To 0..1, by whole steps.
SIMD_INLINE inline double wrapped(double x) { return x - wholeBelow(x); }
/// To 0..1/2, by mirrors at whole numbers and between them.
SIMD_INLINE inline double folded(double x) { return std::abs(x - nearest(x)); }
/// To 0..1, by mirrors at whole numbers.
SIMD_INLINE inline double mirrored(double x) { return std::abs(x - 2 * nearest(x / 2)); }
SIMD_INLINE inline Point swapped(bool yes, Point p, Point other) {
    return {yes ? other.x : p.x, yes ? other.y : p.y};
}

// Each pattern maps a place to the place of the piece that it shows, and has the corners of the piece. The
// unit is the width, the origin is the centre and the x axis lies along the angle.

/// Sides of length 1 that meet at an acute angle.
struct Parallelogram {
    double cosine, sine;

    /// An angle near 0 would leave it without an inside.
    explicit Parallelogram(const Inputs& in) {
        double angle = in.number("inputAcuteAngle", -1e6, 1e6);
        cosine = std::cos(angle), sine = std::sin(angle);
        if (std::abs(sine) < 0.01) sine = std::copysign(0.01, sine);
    }
    /// Ways along the two sides.
    SIMD_INLINE Point sides(Point p) const { return {p.x - p.y / sine * cosine, p.y / sine}; }
    SIMD_INLINE Point place(Point s) const { return {s.x + s.y * cosine, s.y * sine}; }
    std::vector<Point> corners() const { return {{0, 0}, {1, 0}, {cosine, sine}, {1 + cosine, sine}}; }
};

struct Translated : Parallelogram {
    using Parallelogram::Parallelogram;
    SIMD_INLINE Point operator()(Point p) const {
        Point s = sides(p);
        return place({wrapped(s.x), wrapped(s.y)});
    }
};

struct Reflected : Parallelogram {
    using Parallelogram::Parallelogram;
    SIMD_INLINE Point operator()(Point p) const {
        Point s = sides(p);
        return place({folded(s.x), folded(s.y)});
    }
    std::vector<Point> corners() const {
        return {{0, 0}, {0.5, 0}, {cosine / 2, sine / 2}, {(1 + cosine) / 2, sine / 2}};
    }
};

/// A square, pushed over until it fills the parallelogram.
struct Pushed : Parallelogram {
    using Parallelogram::Parallelogram;
    SIMD_INLINE Point operator()(Point p) const {
        Point s = sides(p);
        return {mirrored(s.x), mirrored(s.y)};
    }
    std::vector<Point> corners() const { return {{0, 0}, {1, 0}, {0, 1}, {1, 1}}; }
};

/// A pattern without further inputs.
struct Plain {
    explicit Plain(const Inputs&) {}
};

/// A square, moved along its sides.
struct Glided : Plain {
    using Plain::Plain;
    SIMD_INLINE Point operator()(Point p) const { return {wrapped(p.x), wrapped(p.y)}; }
    std::vector<Point> corners() const { return {{0, 0}, {1, 0}, {0, 1}, {1, 1}}; }
};

/// A quarter of a square, to the right of its middle, turned around that.
struct FourRotated : Plain {
    using Plain::Plain;
    SIMD_INLINE Point operator()(Point p) const {
        Point q{p.x - nearest(p.x), p.y - nearest(p.y)};
        q = swapped(q.x + q.y < 0, q, {-q.x, -q.y});
        return swapped(q.y > q.x, q, {q.y, -q.x});
    }
    std::vector<Point> corners() const { return {{0, 0}, {0.5, -0.5}, {0.5, 0.5}}; }
};

/// An eighth of a square, mirrored on all three sides.
struct EightReflected : Plain {
    using Plain::Plain;
    SIMD_INLINE Point operator()(Point p) const {
        Point q{folded(p.x), folded(p.y)};
        return swapped(q.y > q.x, q, {q.y, q.x});
    }
    std::vector<Point> corners() const { return {{0, 0}, {0.5, 0}, {0.5, 0.5}}; }
};

/// An equilateral triangle, turned by halves around the middles of its sides.
struct Triangle : Plain {
    using Plain::Plain;
    SIMD_INLINE Point operator()(Point p) const {
        double t = p.y * (2 / root3), s = wrapped(p.x - t / 2);
        t = wrapped(t);
        Point q = swapped(s + t > 1, {s, t}, {1 - s, 1 - t});
        return {q.x + q.y / 2, q.y * (root3 / 2)};
    }
    std::vector<Point> corners() const { return {{0, 0}, {1, 0}, {0.5, root3 / 2}}; }
};

/// Hexagons whose middles are 1 apart, one above the other.
struct Hexagon : Plain {
    using Plain::Plain;
    /// From the middle of the nearest hexagon. The middles are two grids of oblongs.
    SIMD_INLINE static Point fromMiddle(Point p) {
        Point a{p.x - root3 * nearest(p.x / root3), p.y - nearest(p.y)};
        double x = p.x - root3 / 2, y = p.y - 0.5;
        Point b{x - root3 * nearest(x / root3), y - nearest(y)};
        return swapped(b.x * b.x + b.y * b.y < a.x * a.x + a.y * a.y, a, b);
    }
    SIMD_INLINE static bool aboveTwelfth(Point p) { return p.y * root3 > p.x; }
};

/// A sixth of a hexagon, to the right of its middle, turned around that.
struct SixRotated : Hexagon {
    using Hexagon::Hexagon;
    SIMD_INLINE Point operator()(Point p) const {
        Point q = fromMiddle(p);
        q = swapped(q.x < 0, q, {-q.x, -q.y});
        Point back{q.x / 2 + q.y * (root3 / 2), q.y / 2 - q.x * (root3 / 2)};
        Point ahead{q.x / 2 - q.y * (root3 / 2), q.y / 2 + q.x * (root3 / 2)};
        return swapped(aboveTwelfth(q), swapped(aboveTwelfth({q.x, -q.y}), q, ahead), back);
    }
    std::vector<Point> corners() const {
        return {{0, 0}, {root3 / 4, -0.25}, {1 / root3, 0}, {root3 / 4, 0.25}};
    }
};

/// A twelfth of a hexagon, mirrored on all three sides.
struct TwelveReflected : Hexagon {
    using Hexagon::Hexagon;
    SIMD_INLINE Point operator()(Point p) const {
        Point q = fromMiddle(p);
        q = {std::abs(q.x), std::abs(q.y)};
        q = swapped(aboveTwelfth(q), q, {q.x / 2 + q.y * (root3 / 2), q.x * (root3 / 2) - q.y / 2});
        return {q.x, std::abs(q.y)};
    }
    std::vector<Point> corners() const { return {{0, 0}, {1 / root3, 0}, {root3 / 4, 0.25}}; }
};

/// An equilateral triangle, mirrored on all three sides. It lies beside the centre: one corner is a side's
/// length away from it, and one is twice that.
struct SixReflected : Hexagon {
    using Hexagon::Hexagon;
    static constexpr double side = 1 / root3;
    SIMD_INLINE Point operator()(Point p) const {
        Point q = fromMiddle({p.x - side, p.y});
        q.y = std::abs(q.y);
        q = swapped(q.y > root3 * q.x, q, {q.y * (root3 / 2) - q.x / 2, q.y / 2 + q.x * (root3 / 2)});
        return {q.x + side, std::abs(q.y)};
    }
    std::vector<Point> corners() const { return {{side, 0}, {2 * side, 0}, {1.5 * side, 0.5}}; }
};

template <class Pattern>
class Tiling : public Warp {
  public:
    Tiling(std::string name, const Inputs& in, const Pattern& pattern)
        : name_(std::move(name)), pattern_(pattern) {
        double width = in.number("inputWidth", 1, 1e6), angle = in.number("inputAngle", -1e6, 1e6);
        Point centre = in.point("inputCenter");
        forth_ = Affine::scale(width, width)
                     .then(Affine::rotation(angle))
                     .then(Affine::translation(centre.x, centre.y));
        back_ = *forth_.inverse();
        piece_ = {Rect::inf, Rect::inf, -Rect::inf, -Rect::inf};
        for (Point corner : pattern.corners()) {
            Point p = forth_.apply(corner);
            piece_ = {std::min(piece_.x0, p.x), std::min(piece_.y0, p.y), std::max(piece_.x1, p.x),
                      std::max(piece_.y1, p.y)};
        }
    }

    std::string name() const override { return name_; }
    Rect extent(const Rect&) const override { return Rect::infinite(); }
    Rect region(const Rect&) const override { return piece_; }
    void displace(int x, int y, int n, float* dx, float* dy) const override {
        eachIndex(n, [=, py = y + 0.5, back = back_, forth = forth_, pattern = pattern_](int i) SIMD_INLINE {
            double px = x + i + 0.5;
            Point p =
                pattern(Point{back.a * px + back.c * py + back.tx, back.b * px + back.d * py + back.ty});
            dx[i] = static_cast<float>(forth.a * p.x + forth.c * p.y + forth.tx - px);
            dy[i] = static_cast<float>(forth.b * p.x + forth.d * p.y + forth.ty - py);
        });
    }

  private:
    std::string name_;
    Pattern pattern_;
    Affine forth_, back_;
    Rect piece_;
};

template <class Pattern>
Image tiled(const Inputs& in) {
    return warp(in.image("inputImage"), std::make_shared<Tiling<Pattern>>("tiles", in, Pattern(in)));
}

std::vector<InputInfo> tileInputs(std::optional<double> widthIdentity = 100) {
    return {
        imageInput(), vectorInput("inputCenter", "Center", "Position", {150, 150}),
        numberInput("inputAngle", "Angle", "Angle",
                    {.value = 0, .identity = 0, .sliderMin = -pi, .sliderMax = pi}),
        numberInput("inputWidth", "Width", "Distance",
                    {.value = 100, .identity = widthIdentity, .min = 0, .sliderMin = 1, .sliderMax = 200})};
}

std::vector<InputInfo> parallelogramInputs() {
    std::vector<InputInfo> inputs = tileInputs();
    inputs.push_back(numberInput("inputAcuteAngle", "Acute Angle", "Angle",
                                 {.value = pi / 2, .identity = pi / 2, .sliderMin = -pi, .sliderMax = pi}));
    return inputs;
}

Registrar tileFilter(std::string name, std::string displayName, std::string description, Source source,
                     std::string since, std::vector<InputInfo> inputs, Image (*build)(const Inputs&)) {
    return Registrar({std::move(name), std::move(displayName), std::move(description), source,
                      std::move(since), categories("TileEffect Video StillImage BuiltIn"), std::move(inputs),
                      build});
}

const Registrar filters[] = {
    tileFilter("CIFourfoldTranslatedTile", "Fourfold Translated Tile",
               "Repeats a parallelogram of a picture side by side.",
               ourOwn("repeated after one width, as the tiles with known pictures are"), "10.5",
               parallelogramInputs(), tiled<Translated>),
    tileFilter("CIFourfoldReflectedTile", "Fourfold Reflected Tile",
               "Repeats a parallelogram of a picture, mirrored at its sides.",
               ourOwn("repeated after one width, as the tiles with known pictures are"), "10.5",
               parallelogramInputs(), tiled<Reflected>),
    tileFilter("CIParallelogramTile", "Parallelogram Tile",
               "Pushes a square of a picture into a parallelogram and repeats it, mirrored at its sides.",
               ourOwn("a square pushed over until it fills the parallelogram"), "10.4", parallelogramInputs(),
               tiled<Pushed>),
    tileFilter("CIGlideReflectedTile", "Glide Reflected Tile", "Repeats a square of a picture side by side.",
               fitted("a square moved along its sides", 0), "10.5", tileInputs(), tiled<Glided>),
    tileFilter("CIFourfoldRotatedTile", "Fourfold Rotated Tile",
               "Repeats a quarter of a square of a picture, turned by quarters.",
               ourOwn("repeated after one width, as the tiles with known pictures are"), "10.5", tileInputs(),
               tiled<FourRotated>),
    tileFilter("CIEightfoldReflectedTile", "Eightfold Reflected Tile",
               "Repeats an eighth of a square of a picture, mirrored at its sides.",
               fitted("an eighth of a square, mirrored on its sides", 0), "10.5", tileInputs(),
               tiled<EightReflected>),
    tileFilter("CITriangleTile", "Triangle Tile", "Covers everything with a triangle of a picture.",
               ourOwn("turned by halves around the middles of the sides"), "10.4", tileInputs(std::nullopt),
               tiled<Triangle>),
    tileFilter("CISixfoldRotatedTile", "Sixfold Rotated Tile",
               "Repeats a sixth of a hexagon of a picture, turned by sixths.",
               fitted("a sixth of a hexagon, turned", 0.16), "10.5", tileInputs(), tiled<SixRotated>),
    tileFilter("CISixfoldReflectedTile", "Sixfold Reflected Tile",
               "Repeats a triangle of a picture, mirrored at its sides.",
               fitted("a triangle, mirrored on its sides", 0.16), "10.5", tileInputs(), tiled<SixReflected>),
    tileFilter("CITwelvefoldReflectedTile", "Twelvefold Reflected Tile",
               "Repeats a twelfth of a hexagon of a picture, mirrored at its sides.",
               fitted("a twelfth of a hexagon, mirrored on its sides", 0.16), "10.5", tileInputs(),
               tiled<TwelveReflected>),
};

} // namespace

} // namespace engine
