// What steps share that read between pixels.
#pragma once

#include "tile.h"

namespace engine {

/// The most pixels that a resampling step keeps of its input; larger tiles are computed in pieces.
constexpr double mostKept = 1 << 20;
/// The same where small pieces cost no more than large ones, because the input reads no pixels around its
/// own: half of a second cache.
constexpr double mostCached = 1 << 15;
double mostKeptOf(const Node& input);

/// The rows that a resampling step computes at once.
int bandHeight(const Node& input, const IntRect& area);

/// The two halves of a rectangle, across its longer side.
std::pair<IntRect, IntRect> halves(const IntRect& r);

/// Whether a transform only moves, by whole pixels.
bool isWholeMove(const Affine& matrix);
/// The box around where a transform puts the centres of an area's pixels. (A single row or column of centres
/// has no area, but a place.)
Rect centresOf(const IntRect& area, const Affine& matrix);

/// Computes an area in parts, small enough that what they read can be kept: `needed(part)` is what a part
/// reads, at most `most` pixels, and `work(part, read)` computes it. A part that reads nothing is cleared.
template <class Needed, class Work>
void computeInParts(const IntRect& area, const Pixels& out, double most, Needed needed, Work work) {
    IntRect read = needed(area);
    if (read.count() > most && area.count() > 1) {
        auto [first, second] = halves(area);
        computeInParts(first, out, most, needed, work);
        computeInParts(second, out, most, needed, work);
    } else if (read.isEmpty()) {
        for (int y = area.y0; y < area.y1; ++y) out.at(area.x0, y).clear(area.width());
    } else {
        work(area, read);
    }
}

/// Pixels for steps that read here and there: the four components lie together, so that one load gets them.
class Texels {
  public:
    explicit Texels(const IntRect& area);
    /// With what the evaluator gives.
    Texels(Evaluator& from, const IntRect& area);
    /// Pixels x..x+n-1 of row y.
    void set(int x, int y, int n, const Span& from);

    const float* data() const { return data_.get(); }
    /// Floats from a row to the next.
    int rowStep() const { return 4 * stride_; }

    IntRect area;

  private:
    int stride_;
    Floats data_;
};

/// Where to read by bilinear interpolation, for at most maxSpan pixels.
class Readings {
  public:
    explicit Readings(const Texels& from);
    /// Reading first + i, for i below n, lies (u[i], v[i]) away from the centre of pixel (x + i * step, y).
    /// Whole pixels are counted apart from the rest, so that the rest does not depend on what `from` holds.
    /// Places outside of `from` are moved to its edge.
    void locate(int first, int x, int y, int step, const float* u, const float* v, int n);
    /// The readings 0..n-1.
    void read(int n, const Span& out) const;

  private:
    const Texels& from_;
    alignas(32) float u_[maxSpan], v_[maxSpan];
    alignas(32) int index_[maxSpan];
};

/// Reads n pixels that lie (u, v) away from the centre of pixel (x, y).
inline void readBilinear(const Texels& from, int x, int y, const float* u, const float* v, int n,
                         const Span& out) {
    Readings readings(from);
    readings.locate(0, x, y, 0, u, v, n);
    readings.read(n, out);
}

/// Rows that were computed beforehand.
class Computed : public Evaluator {
  public:
    explicit Computed(Pixels pixels) : pixels_(std::move(pixels)) {}
    void row(int x, int y, int n, const Span& out) override { out.copy(pixels_.at(x, y), n); }

  private:
    Pixels pixels_;
};

} // namespace engine
