// The Gaussian and the box blur.
#include "nodes.h"
#include "sums.h"

#include <cmath>

namespace engine {

namespace simd = color::simd;

namespace {

/// out[i] = the sum over k in -radius..radius of weights[|k|] * centre[i + k * step].
void symmetricFilter(const float* centre, std::ptrdiff_t step, const std::vector<float>& weights, float* out,
                     int n) {
    int radius = static_cast<int>(weights.size()) - 1;
    const float *a = centre - step, *b = centre + step;
    simd::run([=, w = weights[0], v = weights[1]]() SIMD_INLINE {
        SIMD_LOOP
        for (int i = 0; i < n; ++i) out[i] = w * centre[i] + v * (a[i] + b[i]);
    });
    // Two pairs of taps at a time: more would need more pointers than there are registers.
    int k = 2;
    for (; k < radius; k += 2) {
        a = centre - k * step, b = centre + k * step;
        simd::run([=, c = a - step, d = b + step, w = weights[k], v = weights[k + 1]]() SIMD_INLINE {
            SIMD_LOOP
            for (int i = 0; i < n; ++i) out[i] += w * (a[i] + b[i]) + v * (c[i] + d[i]);
        });
    }
    if (k == radius) {
        a = centre - k * step, b = centre + k * step;
        simd::run([=, w = weights[k]]() SIMD_INLINE {
            SIMD_LOOP
            for (int i = 0; i < n; ++i) out[i] += w * (a[i] + b[i]);
        });
    }
}

/// The weighted means 1 3 3 1 of each fourth of pixels that begins at an even one. `out` may be `in`.
void halve(const float* in, float* out, int n) {
    simd::run([=]() SIMD_INLINE {
        SIMD_LOOP
        for (int i = 0; i < n; ++i)
            out[i] = 0.125f * (in[2 * i] + in[2 * i + 3]) + 0.375f * (in[2 * i + 1] + in[2 * i + 2]);
    });
}

/// Pixels 0..n-1 of a row enlarged by the weights of its phases, see GaussianPlan::up. The first one lies in
/// the smaller pixel in[2].
template <int factor>
void enlargeBy(const float* in, const std::vector<std::array<float, 5>>& weights, float* out, int n) {
    std::array<std::array<float, 5>, factor> up;
    std::copy_n(weights.begin(), factor, up.begin());
    simd::run([=]() SIMD_INLINE {
        SIMD_LOOP
        for (int j = 0; j < n / factor; ++j)
            for (int phase = 0; phase < factor; ++phase) {
                const auto& w = up[phase];
                out[factor * j + phase] =
                    w[0] * in[j] + w[1] * in[j + 1] + w[2] * in[j + 2] + w[3] * in[j + 3] + w[4] * in[j + 4];
            }
    });
}

/// A wide Gaussian is computed on an image reduced by a power of two, small enough not to show: it is
/// smoothed by repeated [1 3 3 1] / 8 on the way down and by the cubic B-spline on the way up. The variances
/// of the three add up, so that the Gaussian between them gets the remainder of the wanted one. From a
/// standard deviation of 5 on, what folds over on the way down is below a sixth of a step of 255.
struct GaussianPlan {
    explicit GaussianPlan(double sigma) {
        while (sigma / factor >= 5) factor *= 2;
        double variance = sigma * sigma;
        if (factor > 1) {
            down = {1};
            for (int step = 1; step < factor; step *= 2) {
                std::vector<double> wider(down.size() + 3 * step);
                for (std::size_t i = 0; i < down.size(); ++i)
                    for (int tap = 0; tap < 4; ++tap)
                        wider[i + tap * step] += down[i] * (tap % 3 ? 3 : 1) / 8;
                down = std::move(wider);
            }
            for (int phase = 0; phase < factor; ++phase) up.push_back(spline(phase));
            for (int tap = 0; tap < 5; ++tap)
                for (const auto& w : up) upByTap.push_back(w[tap]);
            double scale = static_cast<double>(factor) * factor;
            variance = variance / scale - 0.25 * (1 - 1 / scale) - 1.0 / 3;
        }
        double s = std::sqrt(variance), sum = 0;
        int radius = std::max(1, static_cast<int>(std::ceil(3.5 * s)));
        std::vector<double> w(radius + 1);
        for (int k = 0; k <= radius; ++k) {
            w[k] = std::exp(-0.5 * k * k / variance);
            sum += k ? 2 * w[k] : w[k];
        }
        for (double v : w) weights.push_back(static_cast<float>(v / sum));
    }

    /// Weights of the smaller pixels -2..2 around the one that a pixel lies in.
    std::array<float, 5> spline(int phase) const {
        double u = (phase + 0.5) / factor - 0.5;
        int first = u < 0 ? -2 : -1;
        double t = u < 0 ? u + 1 : u;
        std::array<float, 5> w{};
        w[first + 2] = static_cast<float>((1 - t) * (1 - t) * (1 - t) / 6);
        w[first + 3] = static_cast<float>((3 * t * t * t - 6 * t * t + 4) / 6);
        w[first + 4] = static_cast<float>((-3 * t * t * t + 3 * t * t + 3 * t + 1) / 6);
        w[first + 5] = static_cast<float>(t * t * t / 6);
        return w;
    }

    int radius() const { return static_cast<int>(weights.size()) - 1; }
    /// How far a pixel's inputs are at most.
    int reach() const { return factor == 1 ? radius() : factor * (radius() + 4); }

    int factor = 1;
    std::vector<double> down;             // by `factor` at once; its middle is the middle of a smaller pixel
    std::vector<float> weights;           // from the middle outwards
    std::vector<std::array<float, 5>> up; // by the place within a smaller pixel
    std::vector<float> upByTap;           // the same, all places of one tap after the other
};

/// Rows of the input, filtered across, in a window that moves up.
class NarrowGaussian : public Evaluator {
  public:
    NarrowGaussian(const GaussianPlan& plan, const Image& image, const IntRect& area, RenderContext& context)
        : plan_(plan), line_({area.x0 - plan.radius(), 0, area.x1 + plan.radius(), 1}),
          input_(context.prepare(image, wide(area))),
          rows_({area.x0, area.y0 - plan.radius(), area.x1, area.y1 + plan.radius()}, 2 * plan.radius() + 1,
                [this](int y, const Span& out) { across(y, out); }) {}

    void row(int x, int y, int n, const Span& out) override {
        const Pixels& rows = rows_.rows(y - plan_.radius(), y + plan_.radius());
        Span from = rows.at(x, y);
        for (int c = 0; c < 4; ++c)
            symmetricFilter(from.plane[c], rows.rowStep(), plan_.weights, out.plane[c], n);
    }

  private:
    IntRect wide(const IntRect& a) const {
        int r = plan_.radius();
        return {a.x0 - r, a.y0 - r, a.x1 + r, a.y1 + r};
    }
    void across(int y, const Span& out) {
        int width = line_.area.width(), radius = plan_.radius();
        Span in = line_.row(0);
        fillRow(*input_, line_.area.x0, y, width, in);
        for (int c = 0; c < 4; ++c)
            symmetricFilter(in.plane[c] + radius, 1, plan_.weights, out.plane[c], width - 2 * radius);
    }

    const GaussianPlan& plan_;
    Pixels line_;
    std::shared_ptr<Evaluator> input_;
    RowWindow rows_;
};

/// On a reduced copy. Both the rows that are filtered across and those that are filtered in both directions
/// are in windows.
class WideGaussian : public Evaluator {
  public:
    WideGaussian(const GaussianPlan& plan, const Image& image, const IntRect& area, RenderContext& context)
        : plan_(plan), taps_(plan.down.begin(), plan.down.end()),
          small_(around(area)), source_{firstOf(small_.x0 - plan.radius()),
                                        firstOf(small_.y0 - plan.radius()), endOf(small_.x1 + plan.radius()),
                                        endOf(small_.y1 + plan.radius())},
          input_(context.prepare(image, source_)), line_({source_.x0, 0, source_.x1, 1}),
          rows_({small_.x0, small_.y0 - plan.radius(), small_.x1, small_.y1 + plan.radius()},
                2 * plan.radius() + 1, [this](int j, const Span& out) { across(j, out); }),
          filtered_(small_, 5, [this](int j, const Span& out) {
              const Pixels& rows = rows_.rows(j - plan_.radius(), j + plan_.radius());
              symmetricFilter(rows.row(j).plane[0], rows.rowStep(), plan_.weights, out.plane[0],
                              static_cast<int>(rows.rowStep()));
          }) {
        for (int k = 0; k < 4; ++k) sums_.emplace_back(line_.area);
    }

    void row(int x, int y, int n, const Span& out) override {
        int f = plan_.factor, first = floorDiv(x, f), count = floorDiv(x + n - 1, f) + 1 - first;
        int middle = floorDiv(y, f);
        const auto& w = plan_.up[y - middle * f];
        const Pixels& rows = filtered_.rows(middle - 2, middle + 2);
        for (int c = 0; c < 4; ++c) {
            float line[maxSpan + 8], wide[maxSpan + 2 * 4];
            simd::run([=, w = w, line = line, p = rows.at(first - 2, middle - 2).plane[c],
                       step = rows.rowStep()]() SIMD_INLINE {
                SIMD_LOOP
                for (int i = 0; i < count + 4; ++i)
                    line[i] = w[0] * p[i] + w[1] * p[i + step] + w[2] * p[i + 2 * step] +
                              w[3] * p[i + 3 * step] + w[4] * p[i + 4 * step];
            });
            int begin = x - first * f;
            if (f > 4) {
                enlarge(line, begin, out.plane[c], n);
                continue;
            }
            if (f == 2)
                enlargeBy<2>(line, plan_.up, wide, 2 * count);
            else
                enlargeBy<4>(line, plan_.up, wide, 4 * count);
            std::copy_n(wide + begin, n, out.plane[c]);
        }
    }

  private:
    /// The smaller pixels that the spline reads.
    IntRect around(const IntRect& a) const {
        int f = plan_.factor;
        return {floorDiv(a.x0, f) - 2, floorDiv(a.y0, f) - 2, floorDiv(a.x1 - 1, f) + 3,
                floorDiv(a.y1 - 1, f) + 3};
    }
    /// A smaller pixel's taps begin factor - 1 pixels before it and end as far behind it.
    int firstOf(int j) const { return j * plan_.factor - (plan_.factor - 1); }
    int endOf(int j) const { return firstOf(j - 1) + static_cast<int>(taps_.size()); }

    /// Row j of the smaller image, filtered across. Each row of the input is added to the sums of all smaller
    /// rows that it is part of, which are three at most.
    void across(int j, const Span& out) {
        if (j != next_) {
            for (Pixels& sum : sums_) sum.clear();
            y_ = firstOf(j);
        }
        next_ = j + 1;
        int floats = static_cast<int>(line_.rowStep());
        Span line = line_.row(0);
        for (; y_ < endOf(j + 1); ++y_) {
            fillRow(*input_, source_.x0, y_, source_.width(), line);
            for (int k = j; firstOf(k) <= y_; ++k)
                addRows(&line.plane[0], &taps_[y_ - firstOf(k)], 1, sums_[k & 3].data.get(), floats);
        }
        Pixels& sum = sums_[j & 3];
        for (int c = 0; c < 4; ++c) {
            float* p = sum.row(0).plane[c];
            int n = source_.width();
            for (int f = plan_.factor; f > 1; f /= 2) halve(p, p, n = n / 2 - 1);
            symmetricFilter(p + plan_.radius(), 1, plan_.weights, out.plane[c], small_.width());
        }
        sum.clear();
    }

    /// The pixels of a row from `begin` on, counted from the left edge of the smaller pixel line[2].
    void enlarge(const float* line, int begin, float* out, int n) const {
        simd::run([=, f = plan_.factor, up = plan_.upByTap.data()]() SIMD_INLINE {
            const float* in = line;
            for (int i = 0, phase = begin; i < n; ++in, phase = 0) {
                int count = n - i < f - phase ? n - i : f - phase;
                const float* w = up + phase;
                float *to = out + i, a = in[0], b = in[1], c = in[2], d = in[3], e = in[4];
                SIMD_LOOP
                for (int k = 0; k < count; ++k)
                    to[k] = w[k] * a + w[k + f] * b + w[k + 2 * f] * c + w[k + 3 * f] * d + w[k + 4 * f] * e;
                i += count;
            }
        });
    }

    const GaussianPlan& plan_;
    std::vector<float> taps_;
    IntRect small_, source_;
    std::shared_ptr<Evaluator> input_;
    Pixels line_;
    std::vector<Pixels> sums_;   // of smaller row j: number j & 3
    int next_ = 1 << 30, y_ = 0; // the smaller row and the row of the input that come next
    RowWindow rows_, filtered_;
};

/// A step that reads a square around each pixel.
class BlurNode : public Node {
  public:
    BlurNode(const Image& image, double extentReach, double reach)
        : Node(image->extent().grown(extentReach, extentReach), {image}), reach_(reach) {}

    bool materialises() const override { return true; }
    Rect regionOfInterest(std::size_t, const Rect& area) const override { return area.grown(reach_, reach_); }

  private:
    double reach_;
};

class GaussianNode : public BlurNode {
  public:
    GaussianNode(const Image& image, double sigma) : GaussianNode(image, sigma, GaussianPlan(sigma)) {}

    std::string name() const override { return "Gaussian blur"; }
    std::shared_ptr<Evaluator> prepare(const IntRect& area, RenderContext& context) const override {
        if (plan_.factor == 1) return std::make_shared<NarrowGaussian>(plan_, inputs()[0], area, context);
        return std::make_shared<WideGaussian>(plan_, inputs()[0], area, context);
    }

  private:
    GaussianNode(const Image& image, double sigma, GaussianPlan plan)
        : BlurNode(image, std::ceil(3 * sigma), plan.reach()), plan_(std::move(plan)) {}

    GaussianPlan plan_;
};

/// Sums that take no longer for a wide box than for a narrow one, and never subtract: what is left of pixels
/// that have gone would depend on where a tile begins.
class BoxEvaluator : public Evaluator {
  public:
    BoxEvaluator(int reach, const Image& image, const IntRect& area, RenderContext& context)
        : reach_(reach), side_(2 * reach + 1),
          input_(
              context.prepare(image, {area.x0 - reach, area.y0 - reach, area.x1 + reach, area.y1 + reach})),
          line_({area.x0 - reach, 0, area.x1 + reach, 1}),
          sums_({area.x0 - reach, 0, area.x1 + reach, side_}), below_(line_.area), result_(line_.area) {
        sums_.clear(); // its padding is added up, too
    }

    void row(int x, int y, int n, const Span& out) override {
        if (y != y_) compute(y);
        out.copy(result_.at(x - reach_, 0), n);
    }

  private:
    /// Rows are added up in blocks of `side` rows, wherever a tile begins: a box is the upper part of one
    /// block, summed from its top downwards, and the lower part of the next, summed upwards. So of each row
    /// of sums_, those above the last one hold what remains of the previous block.
    void compute(int y) {
        int first = y - reach_, last = y + reach_;
        if (y_ == none || first < y_ - reach_ || first > next_) next_ = from_ = first;
        y_ = y;
        for (; next_ <= last; ++next_) take(next_);
        int place = placeOf(last), floats = static_cast<int>(sums_.rowStep());
        const float *below = below_.data.get(), *above = sums_.row((place + 1) % side_).plane[0];
        bool oneBlock = place == side_ - 1;
        simd::run([=, count = static_cast<float>(side_) * static_cast<float>(side_),
                   out = result_.data.get()]() SIMD_INLINE {
            if (oneBlock) {
                SIMD_LOOP
                for (int i = 0; i < floats; ++i) out[i] = below[i] / count;
            } else {
                SIMD_LOOP
                for (int i = 0; i < floats; ++i) out[i] = (above[i] + below[i]) / count;
            }
        });
    }

    int placeOf(int y) const { return y - floorDiv(y, side_) * side_; }

    void take(int y) {
        int place = placeOf(y), floats = static_cast<int>(sums_.rowStep());
        if (place == 0 && y > from_) completeBlock();
        if (place == 0 || y == from_) below_.clear();
        fillRow(*input_, line_.area.x0, y, line_.area.width(), line_.row(0));
        Span sum = sums_.row(place);
        for (int c = 0; c < 4; ++c) sumAcross(line_.row(0).plane[c], sum.plane[c], line_.area.width());
        simd::run([=, below = below_.data.get(), sum = sum.plane[0]]() SIMD_INLINE {
            SIMD_LOOP
            for (int i = 0; i < floats; ++i) below[i] += sum[i];
        });
    }

    /// Makes the rows of a block that is complete the sums of all rows from there to the block's top. When it
    /// has begun before the first row, those before that one are of no use.
    void completeBlock() {
        int floats = static_cast<int>(sums_.rowStep());
        int first = next_ - from_ < side_ ? placeOf(from_) : 0;
        for (int place = side_ - 2; place >= first; --place)
            simd::run([=, sum = sums_.row(place).plane[0], above = sums_.row(place + 1).plane[0]]()
                          SIMD_INLINE {
                              SIMD_LOOP
                              for (int i = 0; i < floats; ++i) sum[i] += above[i];
                          });
    }

    /// out[i] = in[i] + ... + in[i + side - 1], from the sums of 1, 2, 4 ... neighbours, which `in` becomes.
    void sumAcross(float* in, float* out, int n) const {
        std::copy_n(in, n, out); // the side is odd
        for (int length = 1, covered = 1; 2 * length <= side_; length *= 2, covered += side_ & length) {
            n -= length;
            simd::run([=]() SIMD_INLINE {
                SIMD_LOOP
                for (int i = 0; i < n; ++i) in[i] += in[i + length];
            });
            if (side_ & (2 * length))
                simd::run([=, next = in + covered, m = n - covered]() SIMD_INLINE {
                    SIMD_LOOP
                    for (int i = 0; i < m; ++i) out[i] += next[i];
                });
        }
    }

    static constexpr int none = 1 << 30;

    int reach_, side_;
    std::shared_ptr<Evaluator> input_;
    Pixels line_, sums_, below_, result_;
    int y_ = none, next_ = 0,
        from_ = 0; // the row in result_, the row to take next, and the first that was taken
};

class BoxNode : public BlurNode {
  public:
    BoxNode(const Image& image, int reach) : BlurNode(image, reach, reach), reach_(reach) {}

    std::string name() const override { return "box blur"; }
    std::shared_ptr<Evaluator> prepare(const IntRect& area, RenderContext& context) const override {
        return std::make_shared<BoxEvaluator>(reach_, inputs()[0], area, context);
    }

  private:
    int reach_;
};

} // namespace

Image gaussian(const Image& image, double sigma) {
    // A narrower one gives a neighbour less than half a step of 8 bits; a wider one leaves a single colour.
    if (!image || !(sigma > 0.15)) return image;
    if (image->extent().isEmpty()) return image;
    return std::make_shared<GaussianNode>(image, std::min(sigma, 2000.0));
}

Image boxBlur(const Image& image, int reach) {
    if (!image || reach <= 0 || image->extent().isEmpty()) return image;
    return std::make_shared<BoxNode>(image, reach);
}

} // namespace engine
