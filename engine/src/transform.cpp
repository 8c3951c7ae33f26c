// Affine transforms of images.
#include "resample.h"

#include <color/vecmath.h>

#include <cmath>
#include <stdexcept>

namespace engine {

namespace {

class MovedEvaluator : public Evaluator {
  public:
    MovedEvaluator(std::shared_ptr<Evaluator> input, int dx, int dy)
        : input_(std::move(input)), dx_(dx), dy_(dy) {}
    void row(int x, int y, int n, const Span& out) override { input_->row(x - dx_, y - dy_, n, out); }

  private:
    std::shared_ptr<Evaluator> input_;
    int dx_, dy_;
};

/// An image made smaller by whole factors: each pixel the mean of a block.
class Reduction {
  public:
    Reduction(const Image& image, int fx, int fy)
        : image_(image), bounds_(toInt(image->extent())), fx_(fx), fy_(fy),
          // Blocks begin at the image's corner, so that its first pixels are whole blocks.
          x0_(std::isfinite(image->extent().x0) ? bounds_.x0 : 0),
          y0_(std::isfinite(image->extent().y0) ? bounds_.y0 : 0) {}

    int factorX() const { return fx_; }
    int factorY() const { return fy_; }
    double toX(double x) const { return (x - x0_) / fx_; }
    double toY(double y) const { return (y - y0_) / fy_; }
    IntRect bounds() const {
        return {floorDiv(bounds_.x0 - x0_, fx_), floorDiv(bounds_.y0 - y0_, fy_),
                floorDiv(bounds_.x1 - 1 - x0_, fx_) + 1, floorDiv(bounds_.y1 - 1 - y0_, fy_) + 1};
    }

    Texels texels(const IntRect& a, RenderContext& context) const {
        if (fx_ == 1 && fy_ == 1) {
            IntRect own{a.x0 + x0_, a.y0 + y0_, a.x1 + x0_, a.y1 + y0_};
            Texels out(*context.prepare(image_, own), own);
            out.area = a;
            return out;
        }
        Pixels out(a);
        reduce(out, context);
        Texels texels(a);
        for (int y = a.y0; y < a.y1; ++y) texels.set(a.x0, y, a.width(), out.row(y));
        return texels;
    }

  private:
    void reduce(const Pixels& out, RenderContext& context) const {
        // A picture is read as a whole; of an infinite image, parts of the blocks must do.
        constexpr double mostRead = 1 << 28;
        if (block(out.area).count() <= mostRead)
            readAll(out, context);
        else
            readParts(out, context);
    }

    /// The pixels of the image under an area.
    IntRect block(const IntRect& a) const {
        auto edge = [](int index, int factor, int origin) {
            double v = static_cast<double>(index) * factor + origin;
            return static_cast<int>(std::clamp(v, -1.0 * (1 << 29), 1.0 * (1 << 29)));
        };
        return bounds_.intersect(
            {edge(a.x0, fx_, x0_), edge(a.y0, fy_, y0_), edge(a.x1, fx_, x0_), edge(a.y1, fy_, y0_)});
    }

    void readAll(const Pixels& out, RenderContext& context) const {
        IntRect area = block(out.area);
        Pixels sums({area.x0, 0, area.x1, 1});
        sums.clear();
        int floats = static_cast<int>(sums.rowStep());
        context.stream(image_, area, [&](int y, const Span& in) {
            float* sum = sums.data.get();
            color::simd::run([=, from = in.plane[0]]() SIMD_INLINE {
                SIMD_LOOP
                for (int i = 0; i < floats; ++i) sum[i] += from[i];
            });
            int j = floorDiv(y - y0_, fy_);
            bool last = y + 1 == area.y1 || floorDiv(y + 1 - y0_, fy_) != j;
            if (!last) return;
            for (int i = out.area.x0; i < out.area.x1; ++i) {
                IntRect b = block({i, j, i + 1, j + 1});
                float weight = 1 / static_cast<float>(b.count());
                for (int c = 0; c < 4; ++c) {
                    const float* p = sums.row(0).plane[c];
                    float total = 0;
                    for (int x = b.x0 - area.x0; x < b.x1 - area.x0; ++x) total += p[x];
                    *out.at(i, j).plane[c] = total * weight;
                }
            }
            sums.clear();
        });
    }

    void readParts(const Pixels& out, RenderContext& context) const {
        constexpr double mostRead = 1 << 24;
        int side = std::max(1, static_cast<int>(std::sqrt(mostRead / out.area.count())));
        for (int j = out.area.y0; j < out.area.y1; ++j) {
            for (int i = out.area.x0; i < out.area.x1; ++i) {
                IntRect b = block({i, j, i + 1, j + 1});
                Span to = out.at(i, j);
                to.clear(1);
                if (b.isEmpty()) continue;
                b.x0 += std::max(0, b.width() - side) / 2;
                b.y0 += std::max(0, b.height() - side) / 2;
                b.x1 = std::min(b.x1, b.x0 + side);
                b.y1 = std::min(b.y1, b.y0 + side);
                std::array<double, 4> sums{};
                context.stream(image_, b, [&](int, const Span& in) {
                    for (int c = 0; c < 4; ++c)
                        for (int k = 0; k < b.width(); ++k) sums[c] += static_cast<double>(in.plane[c][k]);
                });
                for (int c = 0; c < 4; ++c) *to.plane[c] = static_cast<float>(sums[c] / b.count());
            }
        }
    }

    Image image_;
    IntRect bounds_;
    int fx_, fy_, x0_, y0_;
};

/// Multiplies the coverage of n pixels, whose positions are from + (offset + i) * step, by how much of each
/// lies between two edges. False where that is all of each, and nothing has changed.
bool coverAxis(double from, double step, double low, double high, double footprint, float* coverage,
               int offset, int n) {
    double first = from + offset * step, last = from + (offset + n - 1) * step;
    if (std::min(first, last) - low >= footprint && high - std::max(first, last) >= footprint) return false;
    float scale = static_cast<float>(1 / footprint), move = static_cast<float>(step);
    float toLow = std::isfinite(low) ? static_cast<float>(from - low) : 1e30f;
    float toHigh = std::isfinite(high) ? static_cast<float>(high - from) : 1e30f;
    color::simd::run([=]() SIMD_INLINE {
        SIMD_LOOP
        for (int i = 0; i < n; ++i) {
            float d = static_cast<float>(i + offset) * move;
            float a = color::simd::unit((toLow + d) * scale + 0.5f),
                  b = color::simd::unit((toHigh - d) * scale + 0.5f);
            coverage[i] *= color::simd::max(a + b - 1, 0);
        }
    });
    return true;
}

class TransformNode : public Node {
  public:
    TransformNode(const Image& image, const Affine& matrix, const Affine& inverse)
        : Node(matrix.apply(image->extent()), {image}), matrix_(matrix), inverse_(inverse) {}

    const Affine& matrix() const { return matrix_; }
    std::string name() const override { return isWholeMove(matrix_) ? "move" : "transform"; }
    bool materialises() const override { return !isWholeMove(matrix_); }
    Rect regionOfInterest(std::size_t, const Rect& area) const override {
        if (isWholeMove(matrix_)) return inverse_.apply(area);
        return inverse_.apply(area).grown(factor(inverse_.a, inverse_.c), factor(inverse_.b, inverse_.d));
    }

    std::shared_ptr<Evaluator> prepare(const IntRect& area, RenderContext& context) const override {
        if (isWholeMove(matrix_)) {
            int dx = static_cast<int>(matrix_.tx), dy = static_cast<int>(matrix_.ty);
            return std::make_shared<MovedEvaluator>(
                context.prepare(inputs()[0], {area.x0 - dx, area.y0 - dy, area.x1 - dx, area.y1 - dy}), dx,
                dy);
        }
        const Node& input = *inputs()[0];
        Reduction source(inputs()[0], factor(inverse_.a, inverse_.c), factor(inverse_.b, inverse_.d));
        auto compute = [=, this, &context, most = mostKeptOf(input)](const Pixels& out) {
            this->compute(out, source, most, context);
        };
        return std::make_shared<Bands>(area, bandHeight(input, area), compute);
    }

  private:
    /// The factor by which the source is reduced beforehand: 1 down to half its size.
    static int factor(double perX, double perY) {
        double footprint = std::hypot(perX, perY);
        return footprint < 2 ? 1 : static_cast<int>(std::min(footprint + 1e-6, 1.0 * (1 << 28)));
    }

    void compute(const Pixels& out, const Reduction& source, double most, RenderContext& context) const {
        auto needed = [&](const IntRect& part) {
            Rect region = centresOf(part, inverse_);
            // With the neighbours, and the edge of the image, which shows half a footprint beyond it.
            Rect near{source.toX(region.x0) - 2, source.toY(region.y0) - 2, source.toX(region.x1) + 2,
                      source.toY(region.y1) + 2};
            return toInt(near).intersect(source.bounds());
        };
        computeInParts(out.area, out, most, needed, [&](const IntRect& part, const IntRect& read) {
            Texels in = source.texels(read, context);
            for (int y = part.y0; y < part.y1; ++y)
                eachBlock(part.x0, part.width(),
                          [&](int x, int n) { row(x, y, n, in, source, out.at(x, y)); });
        });
    }

    void row(int x, int y, int n, const Texels& in, const Reduction& source, const Span& out) const {
        constexpr int width = 64; // few enough that float places are exact
        bool partial = false;     // whether a pixel is not covered completely
        alignas(32) float u[width], v[width], coverage[maxSpan];
        Readings readings(in);
        float du = static_cast<float>(inverse_.a / source.factorX()),
              dv = static_cast<float>(inverse_.b / source.factorY());
        eachBlock<width>(x, n, [&](int first, int count) {
            int anchor = anchorOf<width>(first), offset = first - anchor;
            Point from = inverse_.apply(Point{anchor + 0.5, y + 0.5});
            double atX = source.toX(from.x) - 0.5, atY = source.toY(from.y) - 0.5;
            int wholeX = wholePart(atX), wholeY = wholePart(atY);
            float* cover = coverage + (first - x);
            color::simd::run([=, u = u, v = v, u0 = static_cast<float>(atX - wholeX),
                              v0 = static_cast<float>(atY - wholeY)]() SIMD_INLINE {
                SIMD_LOOP
                for (int i = 0; i < count; ++i) {
                    float k = static_cast<float>(i + offset);
                    u[i] = u0 + k * du;
                    v[i] = v0 + k * dv;
                    cover[i] = 1;
                }
            });
            readings.locate(first - x, wholeX, wholeY, 0, u, v, count);
            partial |= coverAxis(from.x, inverse_.a, edges_.x0, edges_.x1, footprintX_, cover, offset, count);
            partial |= coverAxis(from.y, inverse_.b, edges_.y0, edges_.y1, footprintY_, cover, offset, count);
        });
        readings.read(n, out);
        if (!partial) return;
        for (float* p : out.plane)
            color::simd::run([=, coverage = coverage]() SIMD_INLINE {
                SIMD_LOOP
                for (int i = 0; i < n; ++i) p[i] *= coverage[i];
            });
    }

    Affine matrix_, inverse_;
    Rect edges_ = inputs()[0]->extent().integral();
    double footprintX_ = std::hypot(inverse_.a, inverse_.c), footprintY_ = std::hypot(inverse_.b, inverse_.d);
};

} // namespace

Image transform(const Image& image, const Affine& matrix) {
    if (!matrix.isFinite()) throw std::invalid_argument("a transform needs finite numbers");
    if (!image) return nullptr;
    if (auto before = dynamic_cast<const TransformNode*>(image.get())) {
        Affine both = before->matrix().then(matrix);
        // A move stays apart, so that the part of a picture that is rendered does not change how it is
        // sampled. So do steps whose product overflows.
        bool apart = isWholeMove(matrix) && !isWholeMove(before->matrix());
        if (!apart && both.isFinite()) return transform(before->inputs()[0], both);
    }
    auto inverse = matrix.inverse();
    if (!inverse || image->extent().isEmpty()) return empty();
    if (matrix == Affine{}) return image;
    return std::make_shared<TransformNode>(image, matrix, *inverse);
}

} // namespace engine
