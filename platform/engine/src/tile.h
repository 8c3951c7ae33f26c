// What a tile is computed with: whole-numbered areas, spans of pixels, and the evaluators that fill them.
#pragma once

#include <color/simd.h>
#include <engine/engine.h>

#include <algorithm>
#include <new>
#include <unordered_map>

namespace engine {

namespace simd = color::simd;

/// Pixels x0 <= x < x1, y0 <= y < y1. Edges stay within +-limit, so that adding a few never overflows.
struct IntRect {
    static constexpr int limit = 1 << 29;
    int x0 = 0, y0 = 0, x1 = 0, y1 = 0;

    /// All pixels that the rectangle touches.
    static IntRect around(const Rect& r);
    /// The pixels whose centre is inside.
    static IntRect centredIn(const Rect& r);
    Rect rect() const;
    int width() const { return x1 - x0; }
    int height() const { return y1 - y0; }
    bool isEmpty() const { return x0 >= x1 || y0 >= y1; }
    IntRect intersect(const IntRect& o) const {
        return {std::max(x0, o.x0), std::max(y0, o.y0), std::min(x1, o.x1), std::min(y1, o.y1)};
    }
    IntRect unite(const IntRect& o) const;
    IntRect grown(int n) const { return {x0 - n, y0 - n, x1 + n, y1 + n}; }
    bool contains(const IntRect& o) const {
        return o.isEmpty() || (x0 <= o.x0 && y0 <= o.y0 && o.x1 <= x1 && o.y1 <= y1);
    }
    bool operator==(const IntRect&) const = default;
};

/// Longest span: its four planes are half of a first-level cache.
inline constexpr int spanPixels = 1024;

/// Neighbouring pixels of one row, one plane per component: r, g, b, a.
struct Span {
    float* plane[4];
    int count;

    Span from(int begin, int n) const {
        return {{plane[0] + begin, plane[1] + begin, plane[2] + begin, plane[3] + begin}, n};
    }
    void clear() const {
        for (float* p : plane) std::fill_n(p, count, 0.f);
    }
    void copyFrom(const Span& other) const {
        for (int c = 0; c < 4; ++c) std::copy_n(other.plane[c], count, plane[c]);
    }
};

/// Floats on a cache line's boundary, not initialised.
class Floats {
  public:
    Floats() = default;
    explicit Floats(std::size_t count)
        : data_(static_cast<float*>(::operator new(count * sizeof(float), std::align_val_t(64)))) {}
    float* get() const { return data_.get(); }

  private:
    struct Delete {
        void operator()(float* p) const { ::operator delete(p, std::align_val_t(64)); }
    };
    std::unique_ptr<float, Delete> data_;
};

/// Rows of pixels, each row with its four planes one after the other.
class Rows {
  public:
    Rows() = default;
    Rows(int width, int height) : stride_((width + 15) / 16 * 16), floats_(std::size_t(4) * stride_ * height) {}
    Span row(int i, int count) const {
        float* p = floats_.get() + std::size_t(4) * stride_ * i;
        return {{p, p + stride_, p + 2 * stride_, p + 3 * stride_}, count};
    }

  private:
    int stride_ = 0;
    Floats floats_;
};

/// One span of scratch.
class Scratch {
  public:
    Scratch() : rows_(spanPixels, 1) {}
    Span span(int count) const { return rows_.row(0, count); }

  private:
    Rows rows_;
};

class Evaluator {
  public:
    virtual ~Evaluator() = default;
    /// Writes pixels x..x+count-1 of row y, all inside the area it was prepared for. count <= spanPixels.
    virtual void row(int x, int y, const Span& out) = 0;
};

using EvaluatorPtr = std::shared_ptr<Evaluator>;

/// The graph of one render, seen once: its nodes with every reader before what it reads.
class Graph {
  public:
    explicit Graph(const Image& root);
    const std::vector<const Node*>& nodes() const { return order_; }
    int readers(const Node* node) const { return readers_.at(node); }
    /// What of each node is needed for `area` of the root.
    std::unordered_map<const Node*, IntRect> demand(const IntRect& area) const;

  private:
    std::vector<const Node*> order_;
    std::unordered_map<const Node*, int> readers_;
};

/// What holds while one tile is computed.
class RenderContext {
  public:
    RenderContext(const Graph& graph, const Options& options, const IntRect& tile);

    /// An evaluator for any pixels of `area`; transparent outside of the image. An image with several
    /// readers has one evaluator that they share.
    EvaluatorPtr prepare(const Image& image, const IntRect& area);
    const Options& options() const { return options_; }
    /// From straight linear sRGB to the working space, in place.
    void toWorking(const Span& span) const;

  private:
    const Graph& graph_;
    const Options& options_;
    std::unordered_map<const Node*, IntRect> demand_;
    std::unordered_map<const Node*, EvaluatorPtr> shared_;
};

/// Calls row() for a stretch longer than a span.
void evaluateRow(Evaluator& evaluator, int x, int y, const Span& out);

/// rgb *= a, and rgb /= a (0 where a is 0).
void premultiply(const Span& span);
void unpremultiply(const Span& span);

} // namespace engine
