#include "tile.h"

#include <color/vecmath.h>

#include <unordered_set>

namespace engine {

Node::Node(const Rect& extent, std::vector<Image> inputs)
    : extent_(extent.isEmpty() ? Rect{} : extent), inputs_(std::move(inputs)) {}

Rect Node::regionOfInterest(std::size_t, const Rect& area) const { return area; }

IntRect Node::pixels() const { return IntRect::around(extent_); }

// ------------------------------------------------------------------------------------------- graph

Graph::Graph(const Image& root) {
    // Post-order with an own stack: a recipe of many thousand steps shall not overflow the thread's.
    struct Frame {
        const Node* node;
        std::size_t next;
    };
    std::vector<Frame> stack{{root.get(), 0}};
    std::unordered_set<const Node*> seen{root.get()};
    readers_[root.get()] = 1;
    while (!stack.empty()) {
        auto& [node, next] = stack.back();
        if (next == node->inputs().size()) {
            order_.push_back(node);
            stack.pop_back();
            continue;
        }
        const Node* input = node->inputs()[next++].get();
        ++readers_[input];
        if (seen.insert(input).second) stack.push_back({input, 0});
    }
    std::reverse(order_.begin(), order_.end());
}

std::unordered_map<const Node*, IntRect> Graph::demand(const IntRect& area) const {
    std::unordered_map<const Node*, IntRect> areas;
    areas[order_.front()] = area;
    for (const Node* node : order_) {
        IntRect own = areas[node].intersect(node->pixels());
        areas[node] = own;
        if (own.isEmpty()) continue;
        for (std::size_t i = 0; i < node->inputs().size(); ++i) {
            IntRect& wanted = areas[node->inputs()[i].get()];
            wanted = wanted.unite(IntRect::around(node->regionOfInterest(i, own.rect())));
        }
    }
    return areas;
}

Plan planSummary(const Image& image) {
    Plan plan;
    if (!image) return plan;
    Graph graph(image);
    plan.passes = 1;
    plan.steps = static_cast<int>(graph.nodes().size());
    for (const Node* node : graph.nodes()) plan.passes += node->materialises();

    struct Entry {
        const Node* node;
        int depth;
    };
    std::vector<Entry> stack{{image.get(), 0}};
    std::unordered_set<const Node*> seen;
    while (!stack.empty()) {
        auto [node, depth] = stack.back();
        stack.pop_back();
        bool again = !seen.insert(node).second;
        plan.text += std::string(2 * depth, ' ') + node->name() + (again ? " (see above)\n" : "\n");
        if (again) continue;
        for (auto i = node->inputs().rbegin(); i != node->inputs().rend(); ++i) stack.push_back({i->get(), depth + 1});
    }
    return plan;
}

// -------------------------------------------------------------------------------------- evaluators

namespace {

class Transparent final : public Evaluator {
  public:
    void row(int, int, const Span& out) override { out.clear(); }
};

/// Asks for pixels inside of `area` only and fills the rest.
class Clipped final : public Evaluator {
  public:
    Clipped(EvaluatorPtr inner, const IntRect& area) : inner_(std::move(inner)), area_(area) {}

    void row(int x, int y, const Span& out) override {
        int begin = std::clamp(area_.x0 - x, 0, out.count), end = std::clamp(area_.x1 - x, begin, out.count);
        if (y < area_.y0 || y >= area_.y1 || begin == end) return out.clear();
        out.from(0, begin).clear();
        inner_->row(x + begin, y, out.from(begin, end - begin));
        out.from(end, out.count - end).clear();
    }

  private:
    EvaluatorPtr inner_;
    IntRect area_;
};

/// Keeps the last span: the readers of an image mostly ask for the same one in turn.
class Remembering final : public Evaluator {
  public:
    explicit Remembering(EvaluatorPtr inner) : inner_(std::move(inner)) {}

    void row(int x, int y, const Span& out) override {
        if (x != x_ || y != y_ || out.count != count_) {
            inner_->row(x, y, last_.span(out.count));
            x_ = x, y_ = y, count_ = out.count;
        }
        out.copyFrom(last_.span(out.count));
    }

  private:
    EvaluatorPtr inner_;
    Scratch last_;
    int x_ = 0, y_ = 0, count_ = -1;
};

} // namespace

RenderContext::RenderContext(const Graph& graph, const Options& options, const IntRect& tile)
    : graph_(graph), options_(options), demand_(graph.demand(tile)) {}

EvaluatorPtr RenderContext::prepare(const Image& image, const IntRect& area) {
    static const EvaluatorPtr transparent = std::make_shared<Transparent>();
    IntRect inside = area.intersect(image->pixels());
    if (inside.isEmpty()) return transparent;
    bool shared = graph_.readers(image.get()) > 1 && !image->inputs().empty();
    EvaluatorPtr evaluator;
    if (shared) {
        IntRect all = demand_.at(image.get()).unite(inside);
        EvaluatorPtr& known = shared_[image.get()];
        if (!known) known = std::make_shared<Remembering>(image->prepare(all, *this));
        evaluator = known;
    } else {
        evaluator = image->prepare(inside, *this);
    }
    return inside == area ? evaluator : std::make_shared<Clipped>(std::move(evaluator), inside);
}

void RenderContext::toWorking(const Span& s) const {
    if (options_.working && options_.colorManaged)
        options_.working->converter().encode(s.plane, s.plane, static_cast<std::size_t>(s.count));
}

void evaluateRow(Evaluator& evaluator, int x, int y, const Span& out) {
    for (int begin = 0; begin < out.count; begin += spanPixels)
        evaluator.row(x + begin, y, out.from(begin, std::min(spanPixels, out.count - begin)));
}

void premultiply(const Span& s) {
    simd::run([=, r = s.plane[0], g = s.plane[1], b = s.plane[2], a = s.plane[3], n = s.count]() SIMD_INLINE {
        SIMD_LOOP
        for (int i = 0; i < n; ++i) {
            float alpha = a[i];
            r[i] *= alpha, g[i] *= alpha, b[i] *= alpha;
        }
    });
}

void unpremultiply(const Span& s) {
    simd::run([=, r = s.plane[0], g = s.plane[1], b = s.plane[2], a = s.plane[3], n = s.count]() SIMD_INLINE {
        SIMD_LOOP
        for (int i = 0; i < n; ++i) {
            float alpha = a[i];
            float scale = alpha > 0 ? 1 / alpha : 0;
            r[i] *= scale, g[i] *= scale, b[i] *= scale;
        }
    });
}

} // namespace engine
