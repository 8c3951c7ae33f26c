// CIDiscBlur.
#include "filter.h"
#include "kernel.h"
#include "resample.h"

#include <cmath>

namespace engine {

namespace {

/// A row of the disc: the number of whole pixels on each side of the middle one, and the part that counts of
/// the next one.
struct Row {
    int whole;
    float part;
};

/// The rows of a disc from its middle outwards. A row is as long as the mean of the disc's width within it.
std::vector<Row> rowsOf(double r) {
    // The integral of the half width from the middle to y.
    auto area = [=](double y) {
        y = std::clamp(y, -r, r);
        return 0.5 * (y * std::sqrt(r * r - y * y) + r * r * std::asin(y / r));
    };
    std::vector<Row> rows;
    for (int dy = 0; dy < r + 0.5; ++dy) {
        double beyond = std::max(area(dy + 0.5) - area(dy - 0.5) - 0.5, -0.5);
        // A row narrower than a pixel is a part of the middle one alone.
        int whole = beyond < 0 ? -1 : static_cast<int>(beyond);
        rows.push_back({whole, static_cast<float>(beyond < 0 ? 1 + 2 * beyond : beyond - whole)});
    }
    return rows;
}

/// Keeps running sums along each row of the input; every row of the disc is the difference of two, so that
/// the work grows with the radius and not with the area.
class DiscNode : public Node {
  public:
    DiscNode(const Image& image, double radius)
        : Node(image->extent().grown(std::ceil(radius) + 2, std::ceil(radius) + 2), {image}),
          rows_(rowsOf(radius)), reach_(static_cast<int>(rows_.size())) {
        double sum = 0;
        for (std::size_t k = 0; k < rows_.size(); ++k) {
            const Row& row = rows_[k];
            double part = static_cast<double>(row.part);
            sum += (k ? 2 : 1) * (row.whole < 0 ? part : 2 * (row.whole + part) + 1);
        }
        scale_ = static_cast<float>(1 / sum);
    }

    std::string name() const override { return "disc blur"; }
    bool materialises() const override { return true; }
    Rect regionOfInterest(std::size_t, const Rect& area) const override { return area.grown(reach_, reach_); }
    std::shared_ptr<Evaluator> prepare(const IntRect& area, RenderContext& context) const override {
        Pixels out(area);
        out.clear();
        int width = area.width() + 2 * reach_;
        std::vector<double> sums(width + 1);
        IntRect read{area.x0 - reach_, area.y0 - reach_, area.x1 + reach_, area.y1 + reach_};
        context.stream(inputs()[0], read, [&](int y, const Span& in) {
            for (int c = 0; c < 4; ++c) {
                for (int i = 0; i < width; ++i) sums[i + 1] = sums[i] + static_cast<double>(in.plane[c][i]);
                for (int k = 1 - reach_; k < reach_; ++k)
                    if (y + k >= area.y0 && y + k < area.y1)
                        add(rows_[std::abs(k)], sums.data() + reach_, in.plane[c] + reach_,
                            out.row(y + k).plane[c], area.width());
            }
        });
        return std::make_shared<Computed>(std::move(out));
    }

  private:
    /// `sums` and `in` begin with the first pixel of `out`.
    void add(const Row& row, const double* sums, const float* in, float* out, int n) const {
        float part = row.part * scale_, all = scale_;
        if (row.whole < 0) {
            eachIndex(n, [=](int i) SIMD_INLINE { out[i] += part * in[i]; });
            return;
        }
        int m = row.whole;
        eachIndex(n, [=, end = sums + m + 1, begin = sums - m, left = in - m - 1,
                      right = in + m + 1](int i) SIMD_INLINE {
            out[i] += all * static_cast<float>(end[i] - begin[i]) + part * (left[i] + right[i]);
        });
    }

    std::vector<Row> rows_;
    int reach_;
    float scale_;
};

/// The mean of the disc around each pixel. (Fitted to Core Image's picture, mean residual 0.4 of 255: Core
/// Image approximates. So is the extent, two pixels larger than the disc needs.)
Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    double radius = in.number("inputRadius", 0, 1000);
    if (!image || radius < 0.5 || image->extent().isEmpty()) return image;
    return std::make_shared<DiscNode>(image, radius);
}

const Registrar filter{{"CIDiscBlur",
                        "Disc Blur",
                        "Blurs a picture by the mean of a disc around each pixel, as a lens does.",
                        fitted("the mean of a disc, which Core Image approximates", 0.4),
                        "10.5",
                        categories("Blur Video StillImage BuiltIn"),
                        {imageInput(), numberInput("inputRadius", "Radius", "Distance",
                                                   {.value = 8, .min = 0, .sliderMin = 0, .sliderMax = 100})},
                        build}};

} // namespace

} // namespace engine
