// CIFourfoldTranslatedTile, CIFourfoldReflectedTile, CIParallelogramTile, CIGlideReflectedTile,
// CIFourfoldRotatedTile, CIEightfoldReflectedTile, CITriangleTile, CISixfoldRotatedTile,
// CISixfoldReflectedTile, CITwelvefoldReflectedTile: one piece of a picture that is moved, turned or mirrored
// without end.
//
// They are ten of the seventeen plane symmetry groups. (Core Image does not document where its pieces lie;
// here each begins at the centre, with one side along the angle.)
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
        return place({mirrored(s.x), mirrored(s.y)});
    }
};

/// A square, pushed over until it fills the parallelogram.
struct Pushed : Parallelogram {
    using Parallelogram::Parallelogram;
    SIMD_INLINE Point operator()(Point p) const {
        Point s = sides(p);
        return {mirrored(s.x), mirrored(s.y)};
    }
    std::vector<Point> corners() const { return {{0, 0}, {1, 1}}; }
};

struct Square {
    explicit Square(const Inputs&) {}
    std::vector<Point> corners() const { return {{0, 0}, {1, 1}}; }
};

/// Rows of squares, every second one mirrored.
struct Glided : Square {
    using Square::Square;
    SIMD_INLINE Point operator()(Point p) const {
        double row = wholeBelow(p.y), odd = row - 2 * wholeBelow(row / 2);
        return {wrapped(odd > 0 ? -p.x : p.x), p.y - row};
    }
};

/// Four squares around the centre, a quarter turn between neighbours.
struct FourRotated : Square {
    using Square::Square;
    SIMD_INLINE Point operator()(Point p) const {
        Point q{p.x - 2 * wholeBelow((p.x + 1) / 2), p.y - 2 * wholeBelow((p.y + 1) / 2)};
        q = swapped(q.y < 0, q, {-q.x, -q.y});
        return swapped(q.x < 0, q, {q.y, -q.x});
    }
};

/// Half a square, mirrored on all three sides.
struct EightReflected : Square {
    using Square::Square;
    SIMD_INLINE Point operator()(Point p) const {
        Point q{mirrored(p.x), mirrored(p.y)};
        return swapped(q.y > q.x, q, {q.y, q.x});
    }
};

/// An equilateral triangle, turned by halves around the middles of its sides.
struct Triangle {
    explicit Triangle(const Inputs&) {}
    SIMD_INLINE Point operator()(Point p) const {
        double t = p.y * (2 / root3), s = wrapped(p.x - t / 2);
        t = wrapped(t);
        Point q = swapped(s + t > 1, {s, t}, {1 - s, 1 - t});
        return {q.x + q.y / 2, q.y * (root3 / 2)};
    }
    std::vector<Point> corners() const { return {{0, 0}, {1, 0}, {0.5, root3 / 2}}; }
};

/// Hexagons with sides of length 1, each of six such triangles.
struct Hexagon : Triangle {
    using Triangle::Triangle;
    /// From the middle of the nearest hexagon. The middles are two grids of oblongs.
    SIMD_INLINE static Point fromMiddle(Point p) {
        Point a{p.x - 3 * nearest(p.x / 3), p.y - root3 * nearest(p.y / root3)};
        double x = p.x - 1.5, y = p.y - root3 / 2;
        Point b{x - 3 * nearest(x / 3), y - root3 * nearest(y / root3)};
        return swapped(b.x * b.x + b.y * b.y < a.x * a.x + a.y * a.y, a, b);
    }
    /// Whether a place above the x axis is more than a sixth of a turn from it.
    SIMD_INLINE static bool beyondSixth(Point p) { return p.y > root3 * p.x; }
};

struct SixRotated : Hexagon {
    using Hexagon::Hexagon;
    SIMD_INLINE Point operator()(Point p) const {
        Point q = fromMiddle(p);
        q = swapped(q.y < 0, q, {-q.x, -q.y});
        q = swapped(beyondSixth(q), q, back(q));
        return swapped(beyondSixth(q), q, back(q));
    }
    SIMD_INLINE static Point back(Point p) {
        return {p.x / 2 + p.y * (root3 / 2), p.y / 2 - p.x * (root3 / 2)};
    }
};

struct SixReflected : Hexagon {
    using Hexagon::Hexagon;
    SIMD_INLINE Point operator()(Point p) const {
        Point q = fromMiddle(p);
        q.y = std::abs(q.y);
        q = swapped(beyondSixth(q), q, {q.y * (root3 / 2) - q.x / 2, q.y / 2 + q.x * (root3 / 2)});
        return {q.x, std::abs(q.y)};
    }
};

/// Half a triangle, mirrored on all three sides.
struct TwelveReflected : SixReflected {
    using SixReflected::SixReflected;
    SIMD_INLINE Point operator()(Point p) const {
        Point q = SixReflected::operator()(p);
        return swapped(q.y * root3 > q.x, q, {q.x / 2 + q.y * (root3 / 2), q.x * (root3 / 2) - q.y / 2});
    }
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

Registrar tileFilter(std::string name, std::string displayName, std::string description, std::string since,
                     std::vector<InputInfo> inputs, Image (*build)(const Inputs&)) {
    return Registrar({std::move(name), std::move(displayName), std::move(description), std::move(since),
                      categories("TileEffect Video StillImage BuiltIn"), std::move(inputs), build});
}

const Registrar filters[] = {
    tileFilter("CIFourfoldTranslatedTile", "Fourfold Translated Tile",
               "Repeats a parallelogram of a picture side by side.", "10.5", parallelogramInputs(),
               tiled<Translated>),
    tileFilter("CIFourfoldReflectedTile", "Fourfold Reflected Tile",
               "Repeats a parallelogram of a picture, mirrored at its sides.", "10.5", parallelogramInputs(),
               tiled<Reflected>),
    tileFilter("CIParallelogramTile", "Parallelogram Tile",
               "Pushes a square of a picture into a parallelogram and repeats it, mirrored at its sides.",
               "10.4", parallelogramInputs(), tiled<Pushed>),
    tileFilter("CIGlideReflectedTile", "Glide Reflected Tile",
               "Repeats a square of a picture in rows, every second one mirrored.", "10.5", tileInputs(),
               tiled<Glided>),
    tileFilter("CIFourfoldRotatedTile", "Fourfold Rotated Tile",
               "Repeats a square of a picture, turned by quarters around its corners.", "10.5", tileInputs(),
               tiled<FourRotated>),
    tileFilter("CIEightfoldReflectedTile", "Eightfold Reflected Tile",
               "Repeats half a square of a picture, mirrored at its sides.", "10.5", tileInputs(),
               tiled<EightReflected>),
    tileFilter("CITriangleTile", "Triangle Tile", "Covers everything with a triangle of a picture.", "10.4",
               tileInputs(std::nullopt), tiled<Triangle>),
    tileFilter("CISixfoldRotatedTile", "Sixfold Rotated Tile",
               "Repeats a triangle of a picture, turned by sixths around its corner.", "10.5", tileInputs(),
               tiled<SixRotated>),
    tileFilter("CISixfoldReflectedTile", "Sixfold Reflected Tile",
               "Repeats a triangle of a picture, mirrored at its sides.", "10.5", tileInputs(),
               tiled<SixReflected>),
    tileFilter("CITwelvefoldReflectedTile", "Twelvefold Reflected Tile",
               "Repeats half a triangle of a picture, mirrored at its sides.", "10.5", tileInputs(),
               tiled<TwelveReflected>),
};

} // namespace

} // namespace engine
