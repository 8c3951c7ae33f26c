// Up to four images combined, pixel by pixel.
#include "nodes.h"

#include <stdexcept>

namespace engine {

namespace {

class CombineEvaluator : public Evaluator {
  public:
    CombineEvaluator(std::vector<std::shared_ptr<Evaluator>> inputs, CombineFunction step)
        : inputs_(std::move(inputs)), buffers_(inputs_.size() - 1), step_(std::move(step)) {}

    void row(int x, int y, int n, const Span& out) override {
        std::array<Span, maxCombined> pixels{out};
        for (std::size_t i = 0; i < inputs_.size(); ++i) {
            if (i > 0) pixels[i] = buffers_[i - 1].span();
            inputs_[i]->row(x, y, n, pixels[i]);
        }
        step_(pixels.data(), n);
    }

  private:
    std::vector<std::shared_ptr<Evaluator>> inputs_;
    std::vector<SpanBuffer> buffers_;
    CombineFunction step_;
};

class CombineNode : public Node {
  public:
    CombineNode(std::string name, const Rect& extent, std::vector<Image> images, CombineFunction step)
        : Node(extent, std::move(images)), name_(std::move(name)), step_(std::move(step)) {}

    std::string name() const override { return name_; }
    std::shared_ptr<Evaluator> prepare(const IntRect& area, RenderContext& context) const override {
        std::vector<std::shared_ptr<Evaluator>> prepared;
        for (const Image& image : inputs()) prepared.push_back(context.prepare(image, area));
        return std::make_shared<CombineEvaluator>(std::move(prepared), step_);
    }

  private:
    std::string name_;
    CombineFunction step_;
};

} // namespace

Image combine(std::string name, const Rect& extent, std::vector<Image> images, CombineFunction step) {
    if (images.empty() || images.size() > maxCombined)
        throw std::invalid_argument(name + ": number of images");
    for (Image& image : images)
        if (!image) image = empty();
    return std::make_shared<CombineNode>(std::move(name), extent, std::move(images), std::move(step));
}

} // namespace engine
