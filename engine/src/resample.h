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

/// Reads by bilinear interpolation: u and v count pixels from the centre of the first pixel of `from`; places
/// outside are moved to the edge. n is at most maxSpan.
void readBilinear(const Pixels& from, const float* u, const float* v, int n, const Span& out);

/// Rows that were computed beforehand.
class Computed : public Evaluator {
  public:
    explicit Computed(Pixels pixels) : pixels_(std::move(pixels)) {}
    void row(int x, int y, int n, const Span& out) override { out.copy(pixels_.at(x, y), n); }

  private:
    Pixels pixels_;
};

} // namespace engine
