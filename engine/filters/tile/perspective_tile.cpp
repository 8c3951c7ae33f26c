// CIPerspectiveTile: a picture in perspective, repeated without end.
#include "../geometry/perspective.h"

#include <cmath>

namespace engine::perspective {

namespace {

/// Copies of the picture side by side up to the horizon.
class PerspectiveTiles : public Warp {
  public:
    PerspectiveTiles(const Projection& back, const Rect& source) : back_(back), source_(source) {}

    std::string name() const override { return "perspective tile"; }
    Rect extent(const Rect&) const override { return Rect::infinite(); }
    Rect region(const Rect&) const override { return source_; }
    void displace(int x, int y, int n, float* dx, float* dy) const override {
        for (int i = 0; i < n; ++i) {
            Point to{x + i + 0.5, y + 0.5};
            std::optional<Point> from = back_(to);
            if (from)
                from =
                    Point{within(source_.x0, source_.x1, from->x), within(source_.y0, source_.y1, from->y)};
            displaceTo(from.value_or(outside(source_)), to, dx[i], dy[i]);
        }
    }

  private:
    /// Copies meet at their outermost pixels, so that no gap shows between them.
    static double within(double low, double high, double v) {
        double size = high - low;
        v -= std::floor((v - low) / size) * size;
        return std::clamp(v, std::min(low + 0.5, (low + high) / 2), std::max(high - 0.5, (low + high) / 2));
    }

    Projection back_;
    Rect source_;
};

Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    if (!image) return nullptr;
    auto back = fromPoints(image->extent(), corners(in));
    return back ? warp(image, std::make_shared<PerspectiveTiles>(*back, image->extent())) : empty();
}

const Registrar filter{
    {"CIPerspectiveTile", "Perspective Tile",
     "Leans a picture so that its corners come to four points, and repeats it without end.", "10.4",
     categories("TileEffect Video StillImage BuiltIn"), perspectiveInputs(), build}};

} // namespace

} // namespace engine::perspective
