// Two images combined, pixel by pixel.
#include "nodes.h"

#include <color/simd.h>

namespace engine {

namespace {

class BlendEvaluator : public Evaluator {
  public:
    BlendEvaluator(const BlendMode& mode, std::shared_ptr<Evaluator> above, std::shared_ptr<Evaluator> below)
        : mode_(mode), above_(std::move(above)), below_(std::move(below)) {}

    void row(int x, int y, int n, const Span& out) override {
        below_->row(x, y, n, out);
        above_->row(x, y, n, buffer_.span());
        mode_.run(buffer_.span(), out, n);
    }

  private:
    const BlendMode& mode_;
    std::shared_ptr<Evaluator> above_, below_;
    SpanBuffer buffer_;
};

Rect blendExtent(const BlendMode& mode, const Rect& above, const Rect& below) {
    Rect extent = above.intersect(below);
    if (mode.onlyAbove) extent = extent.unite(above);
    if (mode.onlyBelow) extent = extent.unite(below);
    return extent;
}

class BlendNode : public Node {
  public:
    BlendNode(const BlendMode& mode, const Image& above, const Image& below)
        : Node(blendExtent(mode, above->extent(), below->extent()), {above, below}), mode_(mode) {}

    std::string name() const override { return mode_.name; }
    std::shared_ptr<Evaluator> prepare(const IntRect& area, RenderContext& context) const override {
        auto reaches = [&](int input) { return !area.intersect(toInt(inputs()[input]->extent())).isEmpty(); };
        if (mode_.onlyBelow && !reaches(0)) return context.prepare(inputs()[1], area);
        if (mode_.onlyAbove && !reaches(1)) return context.prepare(inputs()[0], area);
        return std::make_shared<BlendEvaluator>(mode_, context.prepare(inputs()[0], area),
                                                context.prepare(inputs()[1], area));
    }

  private:
    const BlendMode& mode_;
};

constexpr BlendMode over{"source over", sourceOver};

void addAll(const Span& above, const Span& below, int n) {
    for (int c = 0; c < 4; ++c)
        color::simd::run([=, s = above.plane[c], d = below.plane[c]]() SIMD_INLINE {
            SIMD_LOOP
            for (int i = 0; i < n; ++i) d[i] += s[i];
        });
}

constexpr BlendMode plus{"sum", addAll};

} // namespace

void sourceOver(const Span& above, const Span& below, int n) {
    const float* alpha = above.plane[3];
    for (int c = 0; c < 4; ++c) {
        const float* s = above.plane[c];
        float* d = below.plane[c];
        color::simd::run([=]() SIMD_INLINE {
            SIMD_LOOP
            for (int i = 0; i < n; ++i) d[i] = s[i] + d[i] * (1 - alpha[i]);
        });
    }
}

Image blend(const BlendMode& mode, const Image& above, const Image& below) {
    if (!below) return mode.onlyAbove ? above : nullptr;
    if (!above) return mode.onlyBelow ? below : nullptr;
    return std::make_shared<BlendNode>(mode, above, below);
}

Image sum(const Image& a, const Image& b) { return blend(plus, a, b); }

Image composite(const Image& above, const Image& below) { return blend(over, above, below); }

} // namespace engine
