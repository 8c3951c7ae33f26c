#include "nodes.h"
#include "sample.h"

#include <cmath>

namespace engine {

namespace {

class WarpNode : public Node {
  public:
    WarpNode(const Image& image, std::shared_ptr<const Warp> warp)
        : Node(warp->extent(image->extent()), {image}), warp_(std::move(warp)) {}

    std::string name() const override { return warp_->name(); }
    bool materialises() const override { return true; }
    Rect regionOfInterest(std::size_t, const Rect& area) const override {
        return warp_->region(area).grown(1, 1);
    }

    std::shared_ptr<Evaluator> prepare(const IntRect& area, RenderContext& context) const override {
        Pixels out(area);
        compute(area, out, context);
        return std::make_shared<Computed>(std::move(out));
    }

  private:
    /// Finds what the area reads by computing all places first: exact for every warp, and what is kept of the
    /// input stays small where a warp gathers from far away.
    void compute(const IntRect& area, const Pixels& out, RenderContext& context) const {
        std::size_t width = area.width(), count = width * area.height();
        std::vector<float> dx(count), dy(count);
        Rect region{Rect::inf, Rect::inf, -Rect::inf, -Rect::inf};
        for (int y = area.y0; y < area.y1; ++y) {
            float *rowX = &dx[(y - area.y0) * width], *rowY = &dy[(y - area.y0) * width];
            warp_->displace(area.x0, y, area.width(), rowX, rowY);
            for (int i = 0; i < area.width(); ++i) {
                double sx = area.x0 + i + static_cast<double>(rowX[i]), sy = y + static_cast<double>(rowY[i]);
                region = {std::min(region.x0, sx), std::min(region.y0, sy), std::max(region.x1, sx),
                          std::max(region.y1, sy)};
            }
        }
        // With the transparent pixels around it, which take what is read beyond.
        IntRect needed = toInt({region.x0 - 1, region.y0 - 1, region.x1 + 2, region.y1 + 2})
                             .intersect(toInt(inputs()[0]->extent().integral().grown(1, 1)));
        if (needed.count() > mostSampled && count > 1) {
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
        for (int y = area.y0; y < area.y1; ++y) {
            float *rowX = &dx[(y - area.y0) * width], *rowY = &dy[(y - area.y0) * width];
            for (int i = 0; i < area.width(); ++i) {
                rowX[i] += static_cast<float>(area.x0 + i - needed.x0);
                rowY[i] += static_cast<float>(y - needed.y0);
            }
            for (int x = 0; x < area.width(); x += maxSpan)
                sample(in, rowX + x, rowY + x, std::min(maxSpan, area.width() - x), out.at(area.x0 + x, y));
        }
    }

    std::shared_ptr<const Warp> warp_;
};

} // namespace

Image warp(const Image& image, std::shared_ptr<const Warp> warp) {
    if (!image) return nullptr;
    if (image->extent().isEmpty()) return empty();
    return std::make_shared<WarpNode>(image, std::move(warp));
}

} // namespace engine
