// Cropping, and edges continued to infinity.
#include "tile.h"

namespace engine {

namespace {

class CropNode : public Node {
  public:
    CropNode(const Image& image, const Rect& area)
        : Node(image->extent().intersect(area), {image}), area_(area) {}

    const Rect& area() const { return area_; }
    std::string name() const override { return "crop"; }
    Rect regionOfInterest(std::size_t, const Rect& area) const override { return area.intersect(area_); }
    std::shared_ptr<Evaluator> prepare(const IntRect& area, RenderContext& context) const override {
        IntRect inside = area.intersect(centresIn(area_));
        if (inside.isEmpty()) return context.prepare(nullptr, area);
        return clipped(context.prepare(inputs()[0], inside), inside);
    }

  private:
    Rect area_;
};

class ClampEvaluator : public Evaluator {
  public:
    ClampEvaluator(std::shared_ptr<Evaluator> input, const IntRect& inside)
        : input_(std::move(input)), inside_(inside) {}

    void row(int x, int y, int n, const Span& out) override {
        y = std::clamp(y, inside_.y0, inside_.y1 - 1);
        // The stretch of the image that is read: at least one pixel.
        int x0 = std::clamp(x, inside_.x0, inside_.x1 - 1);
        int x1 = std::max(std::min(x + n, inside_.x1), x0 + 1);
        int begin = std::clamp(x0 - x, 0, n - 1), count = std::min(x1 - x0, n - begin);
        input_->row(x0, y, count, out.at(begin));
        for (float* p : out.plane) {
            std::fill_n(p, begin, p[begin]);
            std::fill(p + begin + count, p + n, p[begin + count - 1]);
        }
    }

  private:
    std::shared_ptr<Evaluator> input_;
    IntRect inside_;
};

class ClampNode : public Node {
  public:
    explicit ClampNode(const Image& image) : Node(Rect::infinite(), {image}) {}

    std::string name() const override { return "clamp"; }
    Rect regionOfInterest(std::size_t, const Rect& area) const override {
        Rect bounds = inputs()[0]->extent().integral();
        auto axis = [](double low, double high, double& a, double& b) {
            double first = std::max(low, std::min(a, high - 1));
            b = std::max(first + 1, std::min(b, high));
            a = first;
        };
        Rect r = area.integral();
        axis(bounds.x0, bounds.x1, r.x0, r.x1);
        axis(bounds.y0, bounds.y1, r.y0, r.y1);
        return r;
    }
    std::shared_ptr<Evaluator> prepare(const IntRect& area, RenderContext& context) const override {
        IntRect inside = toInt(regionOfInterest(0, toRect(area)));
        return std::make_shared<ClampEvaluator>(context.prepare(inputs()[0], inside), inside);
    }
};

} // namespace

Image crop(const Image& image, const Rect& area) {
    if (!image) return nullptr;
    if (auto before = dynamic_cast<const CropNode*>(image.get()))
        return crop(before->inputs()[0], before->area().intersect(area));
    if (area.contains(image->extent())) return image;
    if (image->extent().intersect(area).isEmpty()) return empty();
    return std::make_shared<CropNode>(image, area);
}

Image clampToEdge(const Image& image) {
    if (!image || image->extent().isEmpty() || image->extent() == Rect::infinite()) return image;
    return std::make_shared<ClampNode>(image);
}

} // namespace engine
