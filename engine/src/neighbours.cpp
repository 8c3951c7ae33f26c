// Steps that compute a pixel from the pixels around it.
#include "nodes.h"
#include "sums.h"

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
        return std::make_shared<Rows>(*this, area, context);
    }

  private:
    class Rows : public Evaluator {
      public:
        Rows(const NeighbourNode& node, const IntRect& area, RenderContext& context)
            : reach_(node.reach_), step_(node.make_(context)),
              around_({area.x0 - reach_, area.y0 - reach_, area.x1 + reach_, area.y1 + reach_}),
              input_(context.prepare(node.inputs()[0], around_)),
              rows_(around_, 2 * reach_ + 1, [this](int y, const Span& out) {
                  fillRow(*input_, around_.x0, y, around_.width(), out);
              }) {}
        void row(int x, int y, int n, const Span& out) override {
            step_(rows_.rows(y - reach_, y + reach_), x, y, n, out);
        }

      private:
        int reach_;
        NeighbourFunction step_;
        IntRect around_;
        std::shared_ptr<Evaluator> input_;
        RowWindow rows_;
    };

    std::string name_;
    int reach_;
    NeighbourMaker make_;
};

/// Takes the rows of its input one by one and adds each to all rows of the result that it is part of. Of
/// these it keeps those that are not complete, so that a far-reaching convolution needs no more memory than
/// its result.
class ConvolutionNode : public Node {
  public:
    ConvolutionNode(const Image& image, std::string name, const Rect& extent, std::vector<Tap> taps,
                    float bias)
        : Node(extent, {image}), name_(std::move(name)), bias_(bias) {
        std::stable_sort(taps.begin(), taps.end(), [](const Tap& a, const Tap& b) { return a.dy < b.dy; });
        for (const Tap& t : taps) {
            box_ = {std::min(box_.x0, t.dx), std::min(box_.y0, t.dy), std::max(box_.x1, t.dx),
                    std::max(box_.y1, t.dy)};
            if (lines_.empty() || lines_.back().dy != t.dy) lines_.push_back({t.dy, {}, {}});
            lines_.back().dx.push_back(t.dx);
            lines_.back().weights.push_back(t.weight);
        }
    }

    std::string name() const override { return name_; }
    bool materialises() const override { return true; }
    Rect regionOfInterest(std::size_t, const Rect& r) const override {
        return {r.x0 + box_.x0, r.y0 + box_.y0, r.x1 + box_.x1, r.y1 + box_.y1};
    }
    std::shared_ptr<Evaluator> prepare(const IntRect& area, RenderContext& context) const override {
        return std::make_shared<Rows>(*this, area, context);
    }

  private:
    /// The taps of one row.
    struct Line {
        int dy;
        std::vector<int> dx;
        std::vector<float> weights;
    };

    class Rows : public Evaluator {
      public:
        Rows(const ConvolutionNode& node, const IntRect& area, RenderContext& context)
            : node_(node), area_(area), readable_(toInt(node.inputs()[0]->extent())), next_(area.y0),
              input_(context.prepare(node.inputs()[0], around(area))),
              line_({area.x0 + node.box_.x0, 0, area.x1 + node.box_.x1, 1}),
              sums_({area.x0, 0, area.x1, std::min(area.height(), node.box_.height() + 1)}) {}

        void row(int x, int y, int n, const Span& out) override {
            const IntRect& box = node_.box_;
            // Row y is the last that row y + box.y1 of the input is part of.
            if (y < last_ || y > last_ + 1) next_ = y + box.y0;
            for (; next_ <= y + box.y1; ++next_) take(next_);
            last_ = y;
            out.copy(sum(y).at(x - area_.x0), n);
        }

      private:
        IntRect around(const IntRect& a) const {
            const IntRect& box = node_.box_;
            return {a.x0 + box.x0, a.y0 + box.y0, a.x1 + box.x1, a.y1 + box.y1};
        }
        Span sum(int y) const { return sums_.row((y - area_.y0) % sums_.area.height()); }

        /// Adds row y of the input, which is the first of a row of the result.
        void take(int y) {
            const IntRect& box = node_.box_;
            int begun = y - box.y0, width = area_.width();
            if (begun >= area_.y0 && begun < area_.y1)
                for (float* p : sum(begun).plane) std::fill_n(p, width, node_.bias_);
            if (y < readable_.y0 || y >= readable_.y1) return;
            fillRow(*input_, line_.area.x0, y, line_.area.width(), line_.row(0));
            std::vector<const float*> from;
            // One plane after the other: what one takes fits the first cache.
            for (int c = 0; c < 4; ++c)
                for (const Line& line : node_.lines_) {
                    if (y - line.dy < area_.y0 || y - line.dy >= area_.y1) continue;
                    from.clear();
                    for (int dx : line.dx) from.push_back(line_.row(0).plane[c] + (dx - box.x0));
                    addRows(from.data(), line.weights.data(), static_cast<int>(from.size()),
                            sum(y - line.dy).plane[c], width);
                }
        }

        const ConvolutionNode& node_;
        IntRect area_, readable_;
        int next_, last_ = 1 << 30; // the row of the input to take next, and the row that was asked for last
        std::shared_ptr<Evaluator> input_;
        Pixels line_, sums_;
    };

    std::string name_;
    std::vector<Line> lines_;
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
