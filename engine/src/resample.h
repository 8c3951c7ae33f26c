// What steps share that read between pixels.
#pragma once

#include "tile.h"

namespace engine {

/// The most pixels that a resampling step keeps of its input; larger tiles are computed in pieces.
constexpr double mostKept = 1 << 20;

/// The two halves of a rectangle, across its longer side.
std::pair<IntRect, IntRect> halves(const IntRect& r);

/// Whether a transform only moves, by whole pixels.
bool isWholeMove(const Affine& matrix);
/// The box around where a transform puts the centres of an area's pixels. (A single row or column of centres
/// has no area, but a place.)
Rect centresOf(const IntRect& area, const Affine& matrix);

/// Computes an area in parts, small enough that what they read can be kept: `needed(part)` is what a part
/// reads, and `work(part, read)` computes it. A part that reads nothing is cleared.
template <class Needed, class Work>
void computeInParts(const IntRect& area, const Pixels& out, Needed needed, Work work) {
    IntRect read = needed(area);
    if (read.count() > mostKept && area.count() > 1) {
        auto [first, second] = halves(area);
        computeInParts(first, out, needed, work);
        computeInParts(second, out, needed, work);
    } else if (read.isEmpty()) {
        for (int y = area.y0; y < area.y1; ++y) out.at(area.x0, y).clear(area.width());
    } else {
        work(area, read);
    }
}

/// Where to read by bilinear interpolation, for at most maxSpan pixels.
class Readings {
  public:
    explicit Readings(const Pixels& from);
    /// Reading first + i, for i below n, lies (u[i], v[i]) away from the centre of pixel (x + i * step, y).
    /// Whole pixels are counted apart from the rest, so that the rest does not depend on what `from` holds.
    /// Places outside of `from` are moved to its edge.
    void locate(int first, int x, int y, int step, const float* u, const float* v, int n);
    /// The readings 0..n-1.
    void read(int n, const Span& out) const;

  private:
    const Pixels& from_;
    alignas(32) float u_[maxSpan], v_[maxSpan];
    alignas(32) int index_[maxSpan];
};

/// Reads n pixels that lie (u, v) away from the centre of pixel (x, y).
inline void readBilinear(const Pixels& from, int x, int y, const float* u, const float* v, int n,
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
