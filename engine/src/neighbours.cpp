// Steps that compute a pixel from the pixels around it.
#include "nodes.h"
#include "resample.h"

#include <color/simd.h>

namespace engine {

namespace {

class NeighbourNode : public Node {
  public:
    NeighbourNode(const Image& image, std::string name, const Rect& extent, int reach, NeighbourMaker make)
        : Node(extent, {image}), name_(std::move(name)), reach_(reach), make_(std::move(make)) {}

    std::string name() const override { return name_; }
    bool materialises() const override { return true; }
    Rect regionOfInterest(std::size_t, const Rect& area) const override { return area.grown(reach_, reach_); }
    std::shared_ptr<Evaluator> prepare(const IntRect& area, RenderContext& context) const override {
        Pixels around({area.x0 - reach_, area.y0 - reach_, area.x1 + reach_, area.y1 + reach_});
        fill(*context.prepare(inputs()[0], around.area), around);
        return std::make_shared<Rows>(std::move(around), make_(context));
    }

  private:
    class Rows : public Evaluator {
      public:
        Rows(Pixels around, NeighbourFunction step) : around_(std::move(around)), step_(std::move(step)) {}
        void row(int x, int y, int n, const Span& out) override { step_(around_, x, y, n, out); }

      private:
        Pixels around_;
        NeighbourFunction step_;
    };

    std::string name_;
    int reach_;
    NeighbourMaker make_;
};

/// Takes the rows of its input one by one and adds each to all rows of the result that it is part of, so that
/// a far-reaching convolution needs no more memory than its result.
class ConvolutionNode : public Node {
  public:
    ConvolutionNode(const Image& image, std::string name, const Rect& extent, std::vector<Tap> taps,
                    float bias)
        : Node(extent, {image}), name_(std::move(name)), taps_(std::move(taps)), bias_(bias) {
        for (const Tap& t : taps_)
            box_ = {std::min(box_.x0, t.dx), std::min(box_.y0, t.dy), std::max(box_.x1, t.dx),
                    std::max(box_.y1, t.dy)};
    }

    std::string name() const override { return name_; }
    bool materialises() const override { return true; }
    Rect regionOfInterest(std::size_t, const Rect& r) const override {
        return {r.x0 + box_.x0, r.y0 + box_.y0, r.x1 + box_.x1, r.y1 + box_.y1};
    }
    std::shared_ptr<Evaluator> prepare(const IntRect& area, RenderContext& context) const override {
        Pixels out(area);
        std::fill_n(out.data.get(), out.rowStep() * area.height(), bias_);
        IntRect read{area.x0 + box_.x0, area.y0 + box_.y0, area.x1 + box_.x1, area.y1 + box_.y1};
        context.stream(inputs()[0], read, [&](int y, const Span& in) {
            for (const Tap& tap : taps_) {
                if (y - tap.dy < area.y0 || y - tap.dy >= area.y1) continue;
                for (int c = 0; c < 4; ++c)
                    color::simd::run([from = in.plane[c] + (tap.dx - box_.x0),
                                      to = out.row(y - tap.dy).plane[c], w = tap.weight, n = area.width()]()
                                         SIMD_INLINE {
                                             SIMD_LOOP
                                             for (int i = 0; i < n; ++i) to[i] += w * from[i];
                                         });
            }
        });
        return std::make_shared<Computed>(std::move(out));
    }

  private:
    std::string name_;
    std::vector<Tap> taps_;
    float bias_;
    IntRect box_; // of the taps, edges included
};

} // namespace

Image neighbourhood(const Image& image, std::string name, int reach, NeighbourMaker make) {
    if (!image || image->extent().isEmpty()) return image;
    return std::make_shared<NeighbourNode>(clampToEdge(image), std::move(name), image->extent().integral(),
                                           reach, std::move(make));
}

Image convolution(const Image& image, std::string name, std::vector<Tap> taps, double bias) {
    if (!image) return nullptr;
    std::erase_if(taps, [](const Tap& tap) { return tap.weight == 0; });
    Rect extent;
    if (bias != 0) extent = Rect::infinite();
    const Rect& e = image->extent();
    if (!e.isEmpty())
        for (const Tap& t : taps) extent = extent.unite({e.x0 - t.dx, e.y0 - t.dy, e.x1 - t.dx, e.y1 - t.dy});
    if (extent.isEmpty()) return empty();
    return std::make_shared<ConvolutionNode>(image, std::move(name), extent, std::move(taps),
                                             static_cast<float>(bias));
}

} // namespace engine
