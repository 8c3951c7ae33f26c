// Steps that need no neighbours. A chain of them works on one span in place.
#include "nodes.h"

#include <color/simd.h>

namespace engine {

namespace {

class StepEvaluator : public Evaluator {
  public:
    StepEvaluator(std::shared_ptr<Evaluator> input, SpanFunction step)
        : input_(std::move(input)), step_(std::move(step)) {}

    void row(int x, int y, int n, const Span& out) override {
        if (input_) input_->row(x, y, n, out);
        eachBlock(x, n, [&](int first, int count) { step_(out.at(first - x), first, y, count); });
    }

  private:
    std::shared_ptr<Evaluator> input_;
    SpanFunction step_;
};

/// A step on an image, or a generator where there is no image.
class StepNode : public Node {
  public:
    StepNode(const Rect& extent, std::vector<Image> inputs, std::string name, SpanMaker make)
        : Node(extent, std::move(inputs)), name_(std::move(name)), make_(std::move(make)) {}

    std::string name() const override { return name_; }
    std::shared_ptr<Evaluator> prepare(const IntRect& area, RenderContext& context) const override {
        auto input = inputs().empty() ? nullptr : context.prepare(inputs()[0], area);
        return std::make_shared<StepEvaluator>(std::move(input), make_(context));
    }

  private:
    std::string name_;
    SpanMaker make_;
};

/// A matrix that keeps alpha and does not read it can be applied to premultiplied colours, with the bias
/// times alpha.
bool needsStraight(const ColorMatrix& m) {
    return m[3] != std::array<double, 5>{0, 0, 0, 1, 0} || m[0][3] != 0 || m[1][3] != 0 || m[2][3] != 0;
}

void applyMatrix(const std::array<float, 20>& matrix, bool straight, const Span& s, int n) {
    float *r = s.plane[0], *g = s.plane[1], *b = s.plane[2], *a = s.plane[3];
    if (!straight) {
        color::simd::run([=, m = matrix]() SIMD_INLINE {
            SIMD_LOOP
            for (int i = 0; i < n; ++i) {
                float R = r[i], G = g[i], B = b[i], A = a[i];
                r[i] = m[0] * R + m[1] * G + m[2] * B + m[4] * A;
                g[i] = m[5] * R + m[6] * G + m[7] * B + m[9] * A;
                b[i] = m[10] * R + m[11] * G + m[12] * B + m[14] * A;
            }
        });
        return;
    }
    color::simd::run([=, m = matrix]() SIMD_INLINE {
        SIMD_LOOP
        for (int i = 0; i < n; ++i) {
            float A = a[i], f = A > 0 ? 1 / A : 0;
            float R = r[i] * f, G = g[i] * f, B = b[i] * f;
            float alpha = m[15] * R + m[16] * G + m[17] * B + m[18] * A + m[19];
            r[i] = alpha * (m[0] * R + m[1] * G + m[2] * B + m[3] * A + m[4]);
            g[i] = alpha * (m[5] * R + m[6] * G + m[7] * B + m[8] * A + m[9]);
            b[i] = alpha * (m[10] * R + m[11] * G + m[12] * B + m[13] * A + m[14]);
            a[i] = alpha;
        }
    });
}

class MatrixNode : public Node {
  public:
    MatrixNode(const Image& image, const ColorMatrix& matrix)
        : Node(image->extent(), {image}), matrix_(matrix) {}

    const ColorMatrix& matrix() const { return matrix_; }
    std::string name() const override { return "color matrix"; }
    std::shared_ptr<Evaluator> prepare(const IntRect& area, RenderContext& context) const override {
        std::array<float, 20> m;
        for (int i = 0; i < 20; ++i) m[i] = static_cast<float>(matrix_[i / 5][i % 5]);
        bool straight = needsStraight(matrix_);
        return std::make_shared<StepEvaluator>(
            context.prepare(inputs()[0], area),
            [=](const Span& pixels, int, int, int n) { applyMatrix(m, straight, pixels, n); });
    }

  private:
    ColorMatrix matrix_;
};

ColorMatrix product(const ColorMatrix& first, const ColorMatrix& next) {
    ColorMatrix out{};
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 5; ++j)
            for (int k = 0; k < 4; ++k) out[i][j] += next[i][k] * first[k][j];
        out[i][4] += next[i][4];
    }
    return out;
}

SpanFunction fillWith(const Rgba& pixel) {
    return [=](const Span& s, int, int, int n) {
        for (int c = 0; c < 4; ++c) std::fill_n(s.plane[c], n, pixel[c]);
    };
}

} // namespace

Image pointStep(const Image& image, std::string name, SpanMaker make) {
    if (!image) return nullptr;
    return std::make_shared<StepNode>(image->extent(), std::vector{image}, std::move(name), std::move(make));
}

Image generator(std::string name, const Rect& extent, SpanMaker make) {
    return std::make_shared<StepNode>(extent, std::vector<Image>{}, std::move(name), std::move(make));
}

Image weighted(const Image& image, std::string name, Weights weights) {
    return pointStep(image, std::move(name), [weights = std::move(weights)](const RenderContext&) {
        return [weights](const Span& pixels, int x, int y, int n) {
            alignas(32) float each[maxSpan];
            weights(x, y, n, each);
            for (float* p : pixels.plane)
                color::simd::run([=, each = each]() SIMD_INLINE {
                    SIMD_LOOP
                    for (int i = 0; i < n; ++i) p[i] *= each[i];
                });
        };
    });
}

Image weighted(const Image& image, double weight) {
    return pointStep(image, "weight", [w = static_cast<float>(weight)](const RenderContext&) {
        return [w](const Span& pixels, int, int, int n) {
            for (float* p : pixels.plane)
                color::simd::run([=]() SIMD_INLINE {
                    SIMD_LOOP
                    for (int i = 0; i < n; ++i) p[i] *= w;
                });
        };
    });
}

Image colorMatrix(const Image& image, const ColorMatrix& matrix) {
    if (!image) return nullptr;
    if (auto before = dynamic_cast<const MatrixNode*>(image.get()))
        return std::make_shared<MatrixNode>(before->inputs()[0], product(before->matrix(), matrix));
    return std::make_shared<MatrixNode>(image, matrix);
}

ColorMatrix colorsOnly(const std::array<double, 9>& m, double bias) {
    return {{{m[0], m[1], m[2], 0, bias},
             {m[3], m[4], m[5], 0, bias},
             {m[6], m[7], m[8], 0, bias},
             {0, 0, 0, 1, 0}}};
}

Image constant(const Color& color) {
    return generator("constant", Rect::infinite(),
                     [=](const RenderContext& context) { return fillWith(context.color(color)); });
}

Image empty() {
    return generator("empty", {}, [](const RenderContext&) { return fillWith({}); });
}

} // namespace engine
