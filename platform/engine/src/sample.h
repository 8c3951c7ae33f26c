// Reading between pixels.
#pragma once

#include "tile.h"

namespace engine {

/// The most pixels that a resampling step keeps of its input; larger tiles are computed in pieces.
constexpr double mostSampled = 1 << 20;

/// The two halves of a rectangle, across its longer side.
std::pair<IntRect, IntRect> halves(const IntRect& r);

/// Bilinear samples: u and v count pixels from the centre of the first pixel of `from`; what is outside is
/// moved to the edge. n is at most maxSpan.
void sample(const Pixels& from, const float* u, const float* v, int n, const Span& out);

/// Rows that were computed beforehand.
class Computed : public Evaluator {
  public:
    explicit Computed(Pixels pixels) : pixels_(std::move(pixels)) {}
    void row(int x, int y, int n, const Span& out) override { out.copy(pixels_.at(x, y), n); }

  private:
    Pixels pixels_;
};

} // namespace engine
