// The Gaussian and the box blur.
#include "nodes.h"
#include "resample.h"

#include <color/simd.h>

#include <cmath>

namespace engine {

namespace {

/// out[i] = the sum over k in -radius..radius of weights[|k|] * centre[i + k * step].
void symmetricFilter(const float* centre, std::ptrdiff_t step, const std::vector<float>& weights, float* out,
                     int n) {
    int radius = static_cast<int>(weights.size()) - 1;
    color::simd::run([=, w = weights[0]]() SIMD_INLINE {
        SIMD_LOOP
        for (int i = 0; i < n; ++i) out[i] = w * centre[i];
    });
    int k = 1;
    // Two pairs of taps at a time: more would need more pointers than there are registers.
    for (; k + 1 <= radius; k += 2) {
        const float *a = centre - k * step, *b = centre + k * step, *c = a - step, *d = b + step;
        color::simd::run([=, w = weights[k], v = weights[k + 1]]() SIMD_INLINE {
            SIMD_LOOP
            for (int i = 0; i < n; ++i) out[i] += w * (a[i] + b[i]) + v * (c[i] + d[i]);
        });
    }
    if (k <= radius) {
        const float *a = centre - k * step, *b = centre + k * step;
        color::simd::run([=, w = weights[k]]() SIMD_INLINE {
            SIMD_LOOP
            for (int i = 0; i < n; ++i) out[i] += w * (a[i] + b[i]);
        });
    }
}

/// A wide Gaussian is computed on an image reduced by a power of two, small enough not to show: it is
/// smoothed by repeated [1 3 3 1] / 8 on the way down and by the cubic B-spline on the way up. The variances
/// of the three add up, so that the Gaussian between them gets the remainder of the wanted one.
struct GaussianPlan {
    explicit GaussianPlan(double sigma) {
        while (sigma / factor >= 8) factor *= 2;
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

    int factor = 1;
    std::vector<double> down;             // by `factor` at once; its middle is the middle of a smaller pixel
    std::vector<float> weights;           // from the middle outwards
    std::vector<std::array<float, 5>> up; // by the place within a smaller pixel
};

class GaussianEvaluator : public Evaluator {
  public:
    GaussianEvaluator(const GaussianPlan& plan, const Image& image, const IntRect& area,
                      RenderContext& context)
        : plan_(plan), rows_(across(image, area, context)) {
        if (plan_.factor == 1) return;
        // All of the smaller image is needed again and again, so its columns are filtered now.
        IntRect a = rows_.area;
        Pixels small({a.x0, a.y0 + plan.radius(), a.x1, a.y1 - plan.radius()});
        for (int y = small.area.y0; y < small.area.y1; ++y)
            symmetricFilter(rows_.row(y).plane[0], rows_.rowStep(), plan.weights, small.row(y).plane[0],
                            static_cast<int>(small.rowStep()));
        rows_ = std::move(small);
    }

    void row(int x, int y, int n, const Span& out) override {
        if (plan_.factor == 1) {
            Span from = rows_.at(x, y);
            for (int c = 0; c < 4; ++c)
                symmetricFilter(from.plane[c], rows_.rowStep(), plan_.weights, out.plane[c], n);
            return;
        }
        int f = plan_.factor, first = floorDiv(x, f) - 2, count = floorDiv(x + n - 1, f) + 3 - first;
        int middle = floorDiv(y, f);
        const auto& w = plan_.up[y - middle * f];
        for (int c = 0; c < 4; ++c) {
            const float* p = rows_.at(first, middle - 2).plane[c];
            std::ptrdiff_t step = rows_.rowStep();
            float line[maxSpan + 8];
            color::simd::run([=, w = w, line = line]() SIMD_INLINE {
                SIMD_LOOP
                for (int i = 0; i < count; ++i)
                    line[i] = w[0] * p[i] + w[1] * p[i + step] + w[2] * p[i + 2 * step] +
                              w[3] * p[i + 3 * step] + w[4] * p[i + 4 * step];
            });
            enlarge(line, x - (first + 2) * f, out.plane[c], n);
        }
    }

  private:
    /// Pixels `begin`.. counted from the left edge of the smaller pixel line[2].
    void enlarge(const float* line, int begin, float* out, int n) const {
        int f = plan_.factor;
        const std::array<float, 5>* up = plan_.up.data();
        for (int i = 0, phase = begin; i < n; ++line, phase = 0) {
            int end = std::min(n, i + f - phase);
            float a = line[0], b = line[1], c = line[2], d = line[3], e = line[4];
            for (; i < end; ++i, ++phase) {
                const auto& w = up[phase];
                out[i] = w[0] * a + w[1] * b + w[2] * c + w[3] * d + w[4] * e;
            }
        }
    }

    /// The rows, reduced and filtered, and those around them that filtering the columns needs.
    Pixels across(const Image& image, const IntRect& area, RenderContext& context) const {
        int f = plan_.factor, radius = plan_.radius(), margin = f > 1 ? 2 : 0;
        IntRect small{floorDiv(area.x0, f) - margin, floorDiv(area.y0, f) - margin - radius,
                      floorDiv(area.x1 - 1, f) + 1 + margin, floorDiv(area.y1 - 1, f) + 1 + margin + radius};
        Pixels out(small);
        out.clear();
        IntRect wide{small.x0 - radius, 0, small.x1 + radius, 1};
        auto filterRow = [&](const Span& in, int y) {
            for (int c = 0; c < 4; ++c)
                symmetricFilter(in.plane[c] + radius, 1, plan_.weights, out.row(y).plane[c], small.width());
        };
        if (f == 1) {
            context.stream(image, {wide.x0, small.y0, wide.x1, small.y1},
                           [&](int y, const Span& in) { filterRow(in, y); });
            return out;
        }

        // A smaller pixel's taps begin f - 1 pixels before it and end as far behind it. Each row of the image
        // is added to the sums of all smaller rows that it is part of, which are three at most.
        int taps = static_cast<int>(plan_.down.size());
        auto firstRow = [&](int j) { return j * f - (f - 1); };
        IntRect source{firstRow(wide.x0), firstRow(small.y0), firstRow(wide.x1 - 1) + taps,
                       firstRow(small.y1 - 1) + taps};
        std::vector<Pixels> sums;
        for (int k = 0; k < 4; ++k) sums.emplace_back(IntRect{source.x0, 0, source.x1, 1}).clear();
        std::vector<float> down(plan_.down.begin(), plan_.down.end());
        Pixels narrow(wide);
        narrow.clear();
        int floats = static_cast<int>(sums[0].rowStep()), next = small.y0;
        auto finishBefore = [&](int y) {
            for (; next < small.y1 && firstRow(next) + taps <= y; ++next) {
                Pixels& sum = sums[next & 3];
                for (int c = 0; c < 4; ++c)
                    shrink(sum.row(0).plane[c], down, narrow.row(0).plane[c], wide.width());
                filterRow(narrow.row(0), next);
                sum.clear();
            }
        };
        context.stream(image, source, [&](int y, const Span& in) {
            finishBefore(y);
            for (int j = next; j < small.y1 && firstRow(j) <= y; ++j) {
                float* sum = sums[j & 3].data.get();
                color::simd::run([=, w = down[y - firstRow(j)], from = in.plane[0]]() SIMD_INLINE {
                    SIMD_LOOP
                    for (int i = 0; i < floats; ++i) sum[i] += w * from[i];
                });
            }
        });
        finishBefore(source.y1);
        return out;
    }

    void shrink(const float* in, const std::vector<float>& taps, float* out, int n) const {
        int count = static_cast<int>(taps.size());
        for (int i = 0; i < n; ++i, in += plan_.factor) {
            float sum = 0;
            for (int k = 0; k < count; ++k) sum += taps[k] * in[k];
            out[i] = sum;
        }
    }

    const GaussianPlan& plan_;
    Pixels rows_;
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
    GaussianNode(const Image& image, double sigma)
        : BlurNode(image, std::ceil(3 * sigma), std::ceil(4 * sigma) + 4), plan_(sigma) {}

    std::string name() const override { return "Gaussian blur"; }
    std::shared_ptr<Evaluator> prepare(const IntRect& area, RenderContext& context) const override {
        return std::make_shared<GaussianEvaluator>(plan_, inputs()[0], area, context);
    }

  private:
    GaussianPlan plan_;
};

/// Running sums: a wide box takes no longer than a narrow one. In double precision, so that adding and
/// subtracting leave no residue.
class BoxNode : public BlurNode {
  public:
    BoxNode(const Image& image, int reach)
        : BlurNode(image, reach, reach), reach_(reach), scale_(1 / (2.0 * reach + 1)) {}

    std::string name() const override { return "box blur"; }
    std::shared_ptr<Evaluator> prepare(const IntRect& area, RenderContext& context) const override {
        Pixels rows({area.x0, area.y0 - reach_, area.x1, area.y1 + reach_});
        rows.clear();
        IntRect wide{area.x0 - reach_, rows.area.y0, area.x1 + reach_, rows.area.y1};
        context.stream(inputs()[0], wide, [&](int y, const Span& in) {
            for (int c = 0; c < 4; ++c) average(in.plane[c], rows.row(y).plane[c], area.width());
        });
        Pixels out(area);
        int floats = static_cast<int>(out.rowStep());
        std::vector<double> sums(floats);
        auto add = [&](int y, double sign) {
            const float* p = rows.row(y).plane[0];
            for (int i = 0; i < floats; ++i) sums[i] += sign * p[i];
        };
        for (int y = area.y0 - reach_; y < area.y0 + reach_; ++y) add(y, 1);
        for (int y = area.y0; y < area.y1; ++y) {
            add(y + reach_, 1);
            float* to = out.row(y).plane[0];
            for (int i = 0; i < floats; ++i) to[i] = static_cast<float>(sums[i] * scale_);
            add(y - reach_, -1);
        }
        return std::make_shared<Computed>(std::move(out));
    }

  private:
    /// `in` begins reach_ pixels before the first result.
    void average(const float* in, float* out, int n) const {
        int side = 2 * reach_ + 1;
        double sum = 0;
        for (int i = 0; i < side - 1; ++i) sum += in[i];
        for (int i = 0; i < n; ++i) {
            sum += in[i + side - 1];
            out[i] = static_cast<float>(sum * scale_);
            sum -= in[i];
        }
    }

    int reach_;
    double scale_;
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
