// Tiles: their pixels, and the evaluators of one tile.
#include "nodes.h"

#include <bit>
#include <cstdint>
#include <new>

#ifdef __linux__
#include <sys/mman.h>
#endif

namespace engine {

namespace {

constexpr std::align_val_t cacheLine{64};

/// The blocks that a thread has given back and not taken again.
class Blocks {
  public:
    ~Blocks() {
        for (const Block& b : kept_) ::operator delete(b.floats, cacheLine);
    }
    float* take(std::size_t size) {
        for (auto b = kept_.begin(); b != kept_.end(); ++b)
            if (b->size == size) {
                float* floats = b->floats;
                kept_.erase(b);
                held_ -= size;
                return floats;
            }
        return allocated(size);
    }
    void give(float* floats, std::size_t size) {
        kept_.push_back({floats, size});
        held_ += size;
        while (held_ > most) {
            held_ -= kept_.front().size;
            ::operator delete(kept_.front().floats, cacheLine);
            kept_.erase(kept_.begin());
        }
    }

  private:
    static float* allocated(std::size_t size) {
        std::size_t bytes = size * sizeof(float);
        void* block = ::operator new(bytes, cacheLine);
#ifdef MADV_HUGEPAGE
        // Getting a block of many small pages takes as long as filling it.
        constexpr std::uintptr_t page = 1 << 21;
        std::uintptr_t begin = (reinterpret_cast<std::uintptr_t>(block) + page - 1) & -page,
                       end = (reinterpret_cast<std::uintptr_t>(block) + bytes) & -page;
        if (begin < end) madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
#endif
        return static_cast<float*>(block);
    }

    static constexpr std::size_t most = 1 << 21;
    struct Block {
        float* floats;
        std::size_t size;
    };
    std::vector<Block> kept_;
    std::size_t held_ = 0;
};

thread_local Blocks blocks;

} // namespace

void GiveBack::operator()(float* block) const { blocks.give(block, size); }

Floats newFloats(std::size_t count) {
    // Sizes are rounded up by an eighth at most, so that tiles which differ a little can take each other's.
    std::size_t unit = std::max<std::size_t>(64, std::bit_floor(count) / 8);
    std::size_t size = (count + unit - 1) / unit * unit;
    return {blocks.take(size), GiveBack{size}};
}

/// Eight floats times an odd number: rows that lie a power of two apart would crowd the same lines of the
/// caches.
static int strideFor(int width) { return ((std::max(width, 0) + 7) / 8 | 1) * 8; }

Pixels::Pixels(const IntRect& a) : area(a), stride(strideFor(a.width())) {
    double floats = 4.0 * stride * std::max(a.height(), 0);
    if (floats > (1 << 28)) throw std::bad_alloc();
    data = newFloats(static_cast<std::size_t>(floats));
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

/// The most pixels of a shared node that are kept.
constexpr double mostKept = 1 << 21;

RenderContext::RenderContext(const RenderSettings& settings, const IntRect& area) : settings(settings) {
    struct Need {
        Rect together;
        double summed = 0; // the sizes of what each reader needs
    };
    std::map<const Node*, Need> needs;
    if (!settings.readersFirst.empty()) needs[settings.readersFirst.front()] = {toRect(area), area.count()};
    for (const Node* node : settings.readersFirst) {
        Need need = needs[node];
        IntRect wanted = toInt(need.together);
        // Readers that look at places far apart are better served one by one.
        if (settings.shared.contains(node) && wanted.count() <= std::min(mostKept, need.summed))
            wanted_[node] = wanted;
        for (std::size_t i = 0; i < node->inputs().size(); ++i)
            if (const Image& input = node->inputs()[i]) {
                Rect read = node->regionOfInterest(i, need.together).intersect(input->extent());
                if (read.isEmpty()) continue;
                Need& of = needs[input.get()];
                of.together = of.together.unite(read);
                of.summed += toInt(read).count();
            }
    }
}

std::shared_ptr<Evaluator> RenderContext::prepareShared(const Image& image, const IntRect& area) {
    // A graph whose steps read one image twice would otherwise take time exponential in its depth; and one
    // whose steps read it in two sizes, such as a blur laid over its own input, time that grows with each.
    if (!settings.shared.contains(image.get())) return image->prepare(area, *this);
    auto wanted = wanted_.find(image.get());
    IntRect whole = wanted != wanted_.end() && wanted->second.contains(area) ? wanted->second : area;
    if (whole.count() > mostKept) return image->prepare(area, *this);
    auto& kept = shared_[{image.get(), whole}];
    if (!kept) kept = std::make_shared<Kept>(image->prepare(whole, *this), whole);
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
        decltype(wanted_) outerWanted;
        if (!alone) outer.swap(shared_), outerWanted.swap(wanted_);
        auto evaluator = prepare(image, strip);
        for (int y = strip.y0; y < strip.y1; ++y) {
            for (int x = 0; x < area.width(); x += maxSpan)
                evaluator->row(area.x0 + x, y, std::min(maxSpan, area.width() - x), out.at(x));
            work(y, out);
        }
        if (!alone) outer.swap(shared_), outerWanted.swap(wanted_);
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

void fillRow(Evaluator& from, int x, int y, int n, const Span& out) {
    for (int i = 0; i < n; i += maxSpan) from.row(x + i, y, std::min(maxSpan, n - i), out.at(i));
}

void fill(Evaluator& from, const Pixels& to) {
    for (int y = to.area.y0; y < to.area.y1; ++y) fillRow(from, to.area.x0, y, to.area.width(), to.row(y));
}

/// As many rows as are needed at a time, and as many again, so that those still needed are moved seldom.
static IntRect windowOf(const IntRect& area, int most) {
    int height = std::min(area.height(), most + std::max(most, 16));
    return {area.x0, area.y0, area.x1, area.y0 + height};
}

RowWindow::RowWindow(const IntRect& area, int most, Make make)
    : kept_(windowOf(area, most)), end_(area.y0), make_(std::move(make)) {}

const Pixels& RowWindow::rows(int first, int last) {
    IntRect& area = kept_.area;
    int height = area.height();
    if (first < area.y0 || first >= end_) {
        area.y0 = end_ = first;
    } else if (last >= area.y1) {
        std::memmove(kept_.data.get(), kept_.row(first).plane[0],
                     sizeof(float) * kept_.rowStep() * (end_ - first));
        area.y0 = first;
    }
    area.y1 = area.y0 + height;
    for (; end_ <= last; ++end_) make_(end_, kept_.row(end_));
    return kept_;
}

Bands::Bands(const IntRect& area, int height, std::function<void(const Pixels&)> compute)
    : area_(area), height_(height), band_(IntRect{}), compute_(std::move(compute)) {}

void Bands::row(int x, int y, int n, const Span& out) {
    if (y < band_.area.y0 || y >= band_.area.y1) {
        int first = area_.y0 + (y - area_.y0) / height_ * height_;
        band_ = Pixels(IntRect{}); // given back before the next is taken
        band_ = Pixels({area_.x0, first, area_.x1, std::min(area_.y1, first + height_)});
        compute_(band_);
    }
    out.copy(band_.at(x, y), n);
}

} // namespace engine
