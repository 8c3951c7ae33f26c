// What nodes use to compute pixels: planes of floats, rows on demand, and the settings of a render.
#pragma once

#include <engine/engine.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <map>
#include <set>

namespace engine {

/// Pixels x0..x1-1 of rows y0..y1-1, y upwards.
struct IntRect {
    int x0 = 0, y0 = 0, x1 = 0, y1 = 0;

    int width() const { return x1 - x0; }
    int height() const { return y1 - y0; }
    bool isEmpty() const { return x0 >= x1 || y0 >= y1; }
    double count() const { return isEmpty() ? 0 : static_cast<double>(width()) * height(); }
    IntRect intersect(const IntRect& o) const {
        return {std::max(x0, o.x0), std::max(y0, o.y0), std::min(x1, o.x1), std::min(y1, o.y1)};
    }
    bool contains(const IntRect& o) const { return x0 <= o.x0 && y0 <= o.y0 && x1 >= o.x1 && y1 >= o.y1; }
    auto operator<=>(const IntRect&) const = default;
};

/// The pixels that touch a rectangle. Limited to +-2^29, so that sizes fit an int.
IntRect toInt(const Rect& r);
/// The pixels whose centres lie in a rectangle.
IntRect centresIn(const Rect& r);
inline Rect toRect(const IntRect& r) {
    if (r.isEmpty()) return {};
    return {static_cast<double>(r.x0), static_cast<double>(r.y0), static_cast<double>(r.x1),
            static_cast<double>(r.y1)};
}
inline int floorDiv(int a, int b) { return a / b - (a % b < 0); }

/// A stretch of one row: planes of premultiplied r, g, b and of alpha.
struct Span {
    std::array<float*, 4> plane;

    Span at(int offset) const {
        return {{plane[0] + offset, plane[1] + offset, plane[2] + offset, plane[3] + offset}};
    }
    void clear(int n) const {
        for (float* p : plane) std::memset(p, 0, sizeof(float) * n);
    }
    void copy(const Span& from, int n) const {
        for (int c = 0; c < 4; ++c) std::memcpy(plane[c], from.plane[c], sizeof(float) * n);
    }
};

/// The most pixels a span has. Eight kilobytes, so that a chain of steps works within the first cache.
constexpr int maxSpan = 512;

/// The pixel below a coordinate, limited so that sizes fit an int.
inline int wholePart(double v) {
    constexpr double most = 1 << 29;
    v = std::clamp(v, -most, most);
    int whole = static_cast<int>(v); // much quicker than the C library's floor
    return whole - (whole > v);
}

/// Places along a row are computed from the middle column of the block that they lie in, so that they come
/// out the same wherever a span begins. The nearer the column, the more exact they are.
template <int width = maxSpan>
int anchorOf(int x) {
    return (x & ~(width - 1)) + width / 2;
}
/// Calls work(first, count) for the parts of pixels x..x+n-1 that lie in one block each.
template <int width = maxSpan, class Work>
void eachBlock(int x, int n, Work work) {
    for (int first = x, end = x + n; first < end;) {
        int next = std::min(end, anchorOf<width>(first) + width / 2);
        work(first, next - first);
        first = next;
    }
}

struct SpanBuffer {
    alignas(32) float data[4][maxSpan];
    Span span() { return {{data[0], data[1], data[2], data[3]}}; }
};

/// Floats for pixels, on the boundary of a cache line. What is given back serves the thread's next tiles,
/// whose pages would otherwise be new, and cleared, each time.
struct GiveBack {
    std::size_t size = 0;
    void operator()(float* block) const;
};
using Floats = std::unique_ptr<float[], GiveBack>;
Floats newFloats(std::size_t count);

/// Pixels of one tile. The planes of one row follow each other.
struct Pixels {
    explicit Pixels(const IntRect& area);
    Span row(int y) const { return at(area.x0, y); }
    Span at(int x, int y) const {
        float* p = data.get() + rowStep() * (y - area.y0) + (x - area.x0);
        return {{p, p + stride, p + 2 * stride, p + 3 * stride}};
    }
    std::ptrdiff_t rowStep() const { return 4 * static_cast<std::ptrdiff_t>(stride); }
    void clear();

    IntRect area;
    int stride;
    Floats data;
};

/// Computes rows of a node for one tile; used by one thread.
class Evaluator {
  public:
    virtual ~Evaluator() = default;
    /// Pixels x..x+n-1 of row y, which lie in the prepared area; n is at most maxSpan.
    virtual void row(int x, int y, int n, const Span& out) = 0;
};

/// Transparent outside of `bounds`.
std::shared_ptr<Evaluator> clipped(std::shared_ptr<Evaluator> evaluator, const IntRect& bounds);

/// A step on pixels x..x+n-1 of row y, in place. They lie in one block.
using SpanFunction = std::function<void(const Span& pixels, int x, int y, int n)>;

using Rgba = std::array<float, 4>;

/// The same for all tiles of a render.
struct RenderSettings {
    /// Null for linear sRGB.
    color::ColorSpacePtr working;
    bool colorManaged = true;
    /// Nodes that are kept for their second reader.
    std::set<const Node*> shared;
    /// All nodes, each after everything that reads it; empty when none is shared.
    std::vector<const Node*> readersFirst;
};

/// The evaluators of one tile.
class RenderContext {
  public:
    /// To render `area` of the image that the settings are for.
    RenderContext(const RenderSettings& settings, const IntRect& area);

    /// The evaluator of an image, transparent outside of the image's extent.
    std::shared_ptr<Evaluator> prepare(const Image& image, const IntRect& area);
    /// A caller's colour as a pixel.
    Rgba color(const Color& color) const;
    /// Calls `work(y, row)` for the rows of the area from the lowest upwards, without those outside of the
    /// image's extent. A row has area.width() pixels, laid out as in Pixels. Keeps the evaluators of one
    /// strip at a time.
    void stream(const Image& image, const IntRect& area, const std::function<void(int, const Span&)>& work);

    const RenderSettings& settings;

  private:
    std::shared_ptr<Evaluator> prepareShared(const Image& image, const IntRect& area);
    std::map<std::pair<const Node*, IntRect>, std::shared_ptr<Evaluator>> shared_;
    /// What all readers of a shared node need of it together.
    std::map<const Node*, IntRect> wanted_;
};

/// Fills the pixels' area.
void fill(Evaluator& from, const Pixels& to);
/// Pixels x..x+n-1 of row y, whatever n is.
void fillRow(Evaluator& from, int x, int y, int n, const Span& out);

/// Rows that are made when they are first needed, from the lowest upwards, and kept while those around them
/// are. The work that a row takes is done once, and what is kept fits the caches.
class RowWindow {
  public:
    using Make = std::function<void(int y, const Span& row)>;
    /// Row y of the area is what `make` computes. At most `most` rows are needed at a time.
    RowWindow(const IntRect& area, int most, Make make);
    /// Pixels with the rows first..last, until the next call. Going back means making rows again.
    const Pixels& rows(int first, int last);

  private:
    Pixels kept_;
    int end_; // of the rows that are there
    Make make_;
};

/// Makes an area in bands of whole rows when they are first needed, and keeps one.
class Bands : public Evaluator {
  public:
    /// `compute` fills what it is given.
    Bands(const IntRect& area, int height, std::function<void(const Pixels&)> compute);
    void row(int x, int y, int n, const Span& out) override;

  private:
    IntRect area_;
    int height_;
    Pixels band_;
    std::function<void(const Pixels&)> compute_;
};

} // namespace engine
