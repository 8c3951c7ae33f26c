// Tiles: their pixels, and the evaluators of one tile.
#include "nodes.h"

#include <new>

namespace engine {

Pixels::Pixels(const IntRect& a) : area(a), stride((std::max(a.width(), 0) + 7) & ~7) {
    double floats = 4.0 * stride * std::max(a.height(), 0);
    if (floats > (1 << 28)) throw std::bad_alloc();
    data = std::make_unique_for_overwrite<float[]>(static_cast<std::size_t>(floats));
}

void Pixels::clear() { std::memset(data.get(), 0, sizeof(float) * rowStep() * std::max(area.height(), 0)); }

Node::Node(const Rect& extent, std::vector<Image> inputs)
    : extent_(extent.isEmpty() ? Rect{} : extent), inputs_(std::move(inputs)) {}

Rect Node::regionOfInterest(std::size_t, const Rect& area) const { return area; }

namespace {

class Nothing : public Evaluator {
    void row(int, int, int n, const Span& out) override { out.clear(n); }
};

/// Transparent outside of `bounds`.
class Clipped : public Evaluator {
  public:
    Clipped(std::shared_ptr<Evaluator> inner, const IntRect& bounds)
        : inner_(std::move(inner)), bounds_(bounds) {}

    void row(int x, int y, int n, const Span& out) override {
        int begin = std::clamp(bounds_.x0 - x, 0, n), end = std::clamp(bounds_.x1 - x, begin, n);
        if (y < bounds_.y0 || y >= bounds_.y1) begin = end = n;
        out.clear(begin);
        if (begin < end) inner_->row(x + begin, y, end - begin, out.at(begin));
        out.at(end).clear(n - end);
    }

  private:
    std::shared_ptr<Evaluator> inner_;
    IntRect bounds_;
};

/// Computed once, read by several.
class Kept : public Evaluator {
  public:
    Kept(std::shared_ptr<Evaluator> inner, const IntRect& area) : inner_(std::move(inner)), pixels_(area) {}

    void row(int x, int y, int n, const Span& out) override {
        if (inner_) {
            fill(*inner_, pixels_);
            inner_.reset();
        }
        out.copy(pixels_.at(x, y), n);
    }

  private:
    std::shared_ptr<Evaluator> inner_;
    Pixels pixels_;
};

} // namespace

std::shared_ptr<Evaluator> clipped(std::shared_ptr<Evaluator> evaluator, const IntRect& bounds) {
    return std::make_shared<Clipped>(std::move(evaluator), bounds);
}

std::shared_ptr<Evaluator> RenderContext::prepare(const Image& image, const IntRect& area) {
    IntRect inside = image ? area.intersect(toInt(image->extent())) : IntRect{};
    if (inside.isEmpty()) return std::make_shared<Nothing>();
    auto evaluator = prepareShared(image, inside);
    if (inside == area) return evaluator;
    return clipped(std::move(evaluator), inside);
}

std::shared_ptr<Evaluator> RenderContext::prepareShared(const Image& image, const IntRect& area) {
    // A graph whose steps read one image twice would otherwise take time exponential in its depth.
    constexpr double mostPixels = 1 << 21;
    if (!settings.shared.contains(image.get()) || area.count() > mostPixels)
        return image->prepare(area, *this);
    auto& kept = shared_[{image.get(), area}];
    if (!kept) kept = std::make_shared<Kept>(image->prepare(area, *this), area);
    return kept;
}

void RenderContext::stream(const Image& image, const IntRect& area,
                           const std::function<void(int, const Span&)>& work) {
    IntRect inside = image ? area.intersect(toInt(image->extent())) : IntRect{};
    if (inside.isEmpty()) return;
    constexpr int stripPixels = 1 << 20;
    int rows = std::max(32, stripPixels / area.width());
    Pixels line({area.x0, 0, area.x1, 1});
    line.clear();
    Span out = line.row(0);
    for (int y0 = inside.y0; y0 < inside.y1; y0 += rows) {
        IntRect strip{area.x0, y0, area.x1, std::min(inside.y1, y0 + rows)};
        // The evaluators of one of many strips are of no use to the others.
        bool alone = strip.y0 == inside.y0 && strip.y1 == inside.y1;
        decltype(shared_) outer;
        if (!alone) outer.swap(shared_);
        auto evaluator = prepare(image, strip);
        for (int y = strip.y0; y < strip.y1; ++y) {
            for (int x = 0; x < area.width(); x += maxSpan)
                evaluator->row(area.x0 + x, y, std::min(maxSpan, area.width() - x), out.at(x));
            work(y, out);
        }
        if (!alone) outer.swap(shared_);
    }
}

Rgba RenderContext::color(const Color& c) const {
    std::array<double, 3> rgb{c.r, c.g, c.b};
    if (settings.colorManaged) {
        rgb = color::ColorSpace::sRGB()->toLinear(rgb);
        if (settings.working) {
            auto coded = settings.working->fromLinear(rgb);
            std::copy_n(coded.begin(), 3, rgb.begin());
        }
    }
    float a = static_cast<float>(std::clamp(c.a, 0.0, 1.0));
    return {static_cast<float>(rgb[0]) * a, static_cast<float>(rgb[1]) * a, static_cast<float>(rgb[2]) * a,
            a};
}

IntRect summedArea(const Image& image, Rect extent) {
    if (extent.isInfinite()) extent = extent.intersect(image->extent());
    IntRect area = centresIn(extent);
    bool readable = !extent.isInfinite() && !area.isEmpty() && area.count() <= 1 << 30;
    return readable ? area : IntRect{};
}

void fill(Evaluator& from, const Pixels& to) {
    const IntRect& a = to.area;
    for (int y = a.y0; y < a.y1; ++y)
        for (int x = a.x0; x < a.x1; x += maxSpan) from.row(x, y, std::min(maxSpan, a.x1 - x), to.at(x, y));
}

} // namespace engine
