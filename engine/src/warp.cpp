// Images whose pixels are read somewhere else.
#include "nodes.h"
#include "resample.h"

#include <cmath>

namespace engine {

namespace {

/// Reads its first input somewhere else.
class DisplacedNode : public Node {
  public:
    bool materialises() const override { return true; }

    std::shared_ptr<Evaluator> prepare(const IntRect& area, RenderContext& context) const override {
        Pixels out(area);
        compute(area, out, context);
        return std::make_shared<Computed>(std::move(out));
    }

  protected:
    using Node::Node;
    /// For the centres of an area's pixels, row by row: how far away from them to read.
    virtual void displace(const IntRect& area, float* dx, float* dy, RenderContext& context) const = 0;

  private:
    /// Computes all places first to find what the area reads, which is exact for every warp. An area that
    /// reads too much to be kept is halved.
    void compute(const IntRect& area, const Pixels& out, RenderContext& context) const {
        std::size_t width = area.width(), count = width * area.height();
        std::vector<float> dx(count), dy(count);
        Rect region{Rect::inf, Rect::inf, -Rect::inf, -Rect::inf};
        displace(area, dx.data(), dy.data(), context);
        for (int y = area.y0; y < area.y1; ++y) {
            float *rowX = &dx[(y - area.y0) * width], *rowY = &dy[(y - area.y0) * width];
            for (int i = 0; i < area.width(); ++i) {
                double sx = area.x0 + i + static_cast<double>(rowX[i]), sy = y + static_cast<double>(rowY[i]);
                region = {std::min(region.x0, sx), std::min(region.y0, sy), std::max(region.x1, sx),
                          std::max(region.y1, sy)};
            }
        }
        // With the transparent pixels around the image, to which places beyond are moved.
        IntRect needed = toInt({region.x0 - 1, region.y0 - 1, region.x1 + 2, region.y1 + 2})
                             .intersect(toInt(inputs()[0]->extent().integral().grown(1, 1)));
        if (needed.count() > mostKept && count > 1) {
            auto [a, b] = halves(area);
            dx = {}, dy = {};
            compute(a, out, context);
            compute(b, out, context);
            return;
        }
        if (needed.isEmpty()) {
            for (int y = area.y0; y < area.y1; ++y) out.at(area.x0, y).clear(area.width());
            return;
        }
        Pixels in(needed);
        fill(*context.prepare(inputs()[0], needed), in);
        Readings readings(in);
        for (int y = area.y0; y < area.y1; ++y) {
            float *rowX = &dx[(y - area.y0) * width], *rowY = &dy[(y - area.y0) * width];
            eachBlock(area.x0, area.width(), [&](int x, int n) {
                readings.locate(0, x, y, 1, rowX + (x - area.x0), rowY + (x - area.x0), n);
                readings.read(n, out.at(x, y));
            });
        }
    }
};

class WarpNode : public DisplacedNode {
  public:
    WarpNode(const Image& image, std::shared_ptr<const Warp> warp)
        : DisplacedNode(warp->extent(image->extent()), {image}), warp_(std::move(warp)) {}

    std::string name() const override { return warp_->name(); }
    Rect regionOfInterest(std::size_t, const Rect& area) const override {
        return warp_->region(area).grown(1, 1);
    }

  private:
    void displace(const IntRect& area, float* dx, float* dy, RenderContext&) const override {
        std::size_t width = area.width();
        for (int y = area.y0; y < area.y1; ++y, dx += width, dy += width)
            eachBlock(area.x0, area.width(), [&](int x, int n) {
                warp_->displace(x, y, n, dx + (x - area.x0), dy + (x - area.x0));
            });
    }

    std::shared_ptr<const Warp> warp_;
};

class MapWarpNode : public DisplacedNode {
  public:
    MapWarpNode(std::string name, const Image& image, const Image& map, const MapWarp& warp)
        : DisplacedNode(image->extent().grown(warp.reach, warp.reach), {image, map}), name_(std::move(name)),
          warp_(warp) {}

    std::string name() const override { return name_; }
    Rect regionOfInterest(std::size_t index, const Rect& area) const override {
        double around = index == 0 ? warp_.reach + 1 : 1;
        return area.grown(around, around);
    }

  private:
    void displace(const IntRect& area, float* dx, float* dy, RenderContext& context) const override {
        Pixels map({area.x0 - 1, area.y0 - 1, area.x1 + 1, area.y1 + 1});
        fill(*context.prepare(inputs()[1], map.area), map);
        std::size_t width = area.width();
        for (int y = area.y0; y < area.y1; ++y, dx += width, dy += width)
            warp_.displace(map.at(area.x0, y), map.rowStep(), area.width(), dx, dy);
    }

    std::string name_;
    MapWarp warp_;
};

} // namespace

Image warp(const Image& image, std::shared_ptr<const Warp> warp) {
    if (!image) return nullptr;
    if (image->extent().isEmpty()) return empty();
    return std::make_shared<WarpNode>(image, std::move(warp));
}

Image warp(std::string name, const Image& image, const Image& map, const MapWarp& warp) {
    if (!image || !map) return image;
    if (image->extent().isEmpty()) return empty();
    return std::make_shared<MapWarpNode>(std::move(name), image, map, warp);
}

} // namespace engine
