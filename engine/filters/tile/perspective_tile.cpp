// CIPerspectiveTile: a picture in perspective, repeated without end.
#include "../geometry/perspective.h"

#include <cmath>

namespace engine::perspective {

namespace {

/// Copies of the picture side by side up to the horizon. A copy goes from the middles of the outermost pixels
/// to the middles of the opposite ones, and those are what comes to the four points.
class PerspectiveTiles : public Warp {
  public:
    PerspectiveTiles(const Projection& back, const Rect& cell) : back_(back), cell_(cell) {}

    std::string name() const override { return "perspective tile"; }
    Rect extent(const Rect&) const override { return Rect::infinite(); }
    Rect region(const Rect&) const override { return cell_; }
    void displace(int x, int y, int n, float* dx, float* dy) const override {
        for (int i = 0; i < n; ++i) {
            Point to{x + i + 0.5, y + 0.5};
            std::optional<Point> from = back_(to);
            if (from) from = Point{within(cell_.x0, cell_.x1, from->x), within(cell_.y0, cell_.y1, from->y)};
            displaceTo(from.value_or(outside(cell_)), to, dx[i], dy[i]);
        }
    }

    /// A picture of one row or column has no middles to go between.
    static Rect cell(const Rect& extent) {
        double dx = extent.width() > 1 ? 0.5 : 0, dy = extent.height() > 1 ? 0.5 : 0;
        return extent.grown(-dx, -dy);
    }

  private:
    static double within(double low, double high, double v) {
        return v - std::floor((v - low) / (high - low)) * (high - low);
    }

    Projection back_;
    Rect cell_;
};

Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    if (!image) return nullptr;
    Rect cell = PerspectiveTiles::cell(image->extent());
    auto back = fromPoints(cell, corners(in));
    return back ? warp(image, std::make_shared<PerspectiveTiles>(*back, cell)) : empty();
}

const Registrar filter{
    {"CIPerspectiveTile", "Perspective Tile",
     "Leans a picture so that its corners come to four points, and repeats it without end.",
     fitted("copies that meet in the middles of their outermost pixels", 0.25), "10.4",
     categories("TileEffect Video StillImage BuiltIn"), perspectiveInputs(), build}};

} // namespace

} // namespace engine::perspective
