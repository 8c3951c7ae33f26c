// Images whose pixels are read somewhere else.
#include "nodes.h"
#include "resample.h"

#include <color/vecmath.h>

#include <algorithm>
#include <cmath>

namespace engine {

namespace {

namespace simd = color::simd;

/// Reads its first input somewhere else.
class DisplacedNode : public Node {
  public:
    bool materialises() const override { return true; }

    std::shared_ptr<Evaluator> prepare(const IntRect& area, RenderContext& context) const override {
        const Node& input = *inputs()[0];
        auto compute = [this, &context, most = mostKeptOf(input)](const Pixels& out) {
            this->compute(out.area, out, most, context);
        };
        return std::make_shared<Bands>(area, bandHeight(input, area), compute);
    }

  protected:
    using Node::Node;
    /// For the centres of an area's pixels, row by row: how far away from them to read.
    virtual void displace(const IntRect& area, float* dx, float* dy, RenderContext& context) const = 0;

  private:
    /// Computes all places first to find what the area reads, which is exact for every warp. An area that
    /// reads more than `most` pixels is halved; and one that is larger itself will most likely do so.
    void compute(const IntRect& area, const Pixels& out, double most, RenderContext& context) const {
        auto halved = [&] {
            auto [a, b] = halves(area);
            compute(a, out, most, context);
            compute(b, out, most, context);
        };
        if (area.count() > most) return halved();
        int width = area.width();
        std::size_t count = static_cast<std::size_t>(area.count());
        Floats dx = newFloats(count), dy = newFloats(count);
        displace(area, dx.get(), dy.get(), context);
        if (isStill(dx.get(), count) && isStill(dy.get(), count)) {
            auto input = context.prepare(inputs()[0], area);
            for (int y = area.y0; y < area.y1; ++y) fillRow(*input, area.x0, y, width, out.at(area.x0, y));
            return;
        }
        IntRect needed = places(area, dx.get(), dy.get());
        if (needed.count() > most && count > 1) {
            dx = {}, dy = {};
            return halved();
        }
        if (needed.isEmpty()) {
            for (int y = area.y0; y < area.y1; ++y) out.at(area.x0, y).clear(width);
            return;
        }
        Texels in(*context.prepare(inputs()[0], needed), needed);
        Readings readings(in);
        for (int y = area.y0; y < area.y1; ++y) {
            float *rowX = &dx[(y - area.y0) * width], *rowY = &dy[(y - area.y0) * width];
            eachBlock(area.x0, width, [&](int x, int n) {
                readings.locate(0, x, y, 1, rowX + (x - area.x0), rowY + (x - area.x0), n);
                readings.read(n, out.at(x, y));
            });
        }
    }

    /// Whether nothing moves, as outside of the circles that many warps are limited to.
    static bool isStill(const float* away, std::size_t count) {
        if (away[0] != 0 || away[count / 2] != 0 || away[count - 1] != 0) return false;
        return std::all_of(away, away + count, [](float v) { return v == 0; });
    }

    /// What the pixels of an area read, of the image and the transparent pixels around it, to which places
    /// beyond are moved.
    IntRect places(const IntRect& area, const float* dx, const float* dy) const {
        // The extremes of each column. Numbers that are not one count for nothing.
        int width = area.width();
        std::vector<float> lowX(width, Rect::inf), highX(width, -Rect::inf), lowY = lowX, highY = highX;
        for (int j = 0; j < area.height(); ++j, dx += width, dy += width)
            simd::run([=, x0 = lowX.data(), x1 = highX.data(), y0 = lowY.data(), y1 = highY.data(),
                       row = static_cast<float>(j)]() SIMD_INLINE {
                SIMD_LOOP
                for (int i = 0; i < width; ++i) {
                    x0[i] = simd::min(dx[i], x0[i]);
                    x1[i] = simd::max(dx[i], x1[i]);
                    y0[i] = simd::min(row + dy[i], y0[i]);
                    y1[i] = simd::max(row + dy[i], y1[i]);
                }
            });
        Rect region{Rect::inf, Rect::inf, -Rect::inf, -Rect::inf};
        for (int i = 0; i < width; ++i) {
            auto at = [](int place, float away) { return place + static_cast<double>(away); };
            region = {
                std::min(region.x0, at(area.x0 + i, lowX[i])), std::min(region.y0, at(area.y0, lowY[i])),
                std::max(region.x1, at(area.x0 + i, highX[i])), std::max(region.y1, at(area.y0, highY[i]))};
        }
        // Floats far away are coarse.
        double coarse = 1e-6 * std::max(std::abs(region.y0 - area.y0), std::abs(region.y1 - area.y0));
        return toInt({region.x0 - 1, region.y0 - 1 - coarse, region.x1 + 2, region.y1 + 2 + coarse})
            .intersect(toInt(inputs()[0]->extent().integral().grown(1, 1)));
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
