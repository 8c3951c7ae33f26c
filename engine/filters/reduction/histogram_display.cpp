// CIHistogramDisplayFilter: a histogram as a diagram.
#include "filter.h"
#include "kernel.h"
#include "resample.h"

#include <cmath>

namespace engine {

namespace {

/// The widest histogram that is drawn.
constexpr int mostColumns = 16384;

/// Above each pixel of the input's lowest row, bars of red, green and blue light as high as its components;
/// the highest of all reaches the top.
class DiagramNode : public Node {
  public:
    DiagramNode(const Image& histogram, const IntRect& row, int height, double low, double high)
        : Node({1.0 * row.x0, 0, 1.0 * row.x1, 1.0 * height}, {histogram}), row_(row), height_(height),
          darkEnd_(static_cast<float>(row.x0 + low * row.width())),
          lightBegin_(static_cast<float>(row.x0 + high * row.width())) {}

    std::string name() const override { return "histogram display"; }
    bool materialises() const override { return true; }
    Rect regionOfInterest(std::size_t, const Rect&) const override { return toRect(row_); }
    std::shared_ptr<Evaluator> prepare(const IntRect& area, RenderContext& context) const override {
        Pixels row(row_);
        fill(*context.prepare(inputs()[0], row_), row);
        float most = 0;
        for (int c = 0; c < 3; ++c)
            for (int i = 0; i < row_.width(); ++i) most = std::max(most, row.row(row_.y0).plane[c][i]);
        float scale = most > 0 && std::isfinite(most) ? static_cast<float>(height_) / most : 0;
        Pixels out(area);
        IntRect drawn = area.intersect({row_.x0, 0, row_.x1, height_});
        out.clear();
        for (int y = drawn.y0; y < drawn.y1; ++y)
            for (int c = 0; c < 3; ++c)
                bars(row.at(drawn.x0, row_.y0).plane[c], out.at(drawn.x0, y), c, scale, drawn.x0, y,
                     drawn.width());
        return std::make_shared<Computed>(std::move(out));
    }

  private:
    /// Light and shade of the paper and the bars, linear.
    static constexpr float paper = 0.05f, shaded = 0.25f, lit = 0.25f;

    void bars(const float* values, const Span& out, int c, float scale, int x, int y, int n) const {
        eachIndex(n, [=, v = out.plane[c], a = out.plane[3], left = static_cast<float>(x) + 0.5f,
                      from = static_cast<float>(y), dark = darkEnd_, light = lightBegin_](int i) SIMD_INLINE {
            float place = left + static_cast<float>(i);
            float bar = simd::mix(paper, 1, simd::unit(values[i] * scale - from));
            bar = place < dark ? bar * shaded : bar;
            v[i] = place > light ? simd::mix(bar, 1, lit) : bar;
            a[i] = 1;
        });
    }

    IntRect row_;
    int height_;
    float darkEnd_, lightBegin_;
};

/// As high as asked for, as wide as the histogram. What is left of the low limit is darker, what is right of
/// the high limit lighter, both as shares of the width. (Core Image documents the inputs; the colours and
/// that the highest bar reaches the top are our own: no picture is known.)
Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    if (!image) return nullptr;
    Rect extent = image->extent().integral();
    if (extent.isEmpty() || extent.isInfinite()) return empty();
    IntRect row = toInt({extent.x0, extent.y0, std::min(extent.x1, extent.x0 + mostColumns), extent.y0 + 1});
    if (row.isEmpty()) return empty();
    int height = static_cast<int>(std::round(in.number("inputHeight", 1, 200)));
    return std::make_shared<DiagramNode>(image, row, height, in.number("inputLowLimit", 0, 1),
                                         in.number("inputHighLimit", 0, 1));
}

const Registrar filter{{"CIHistogramDisplayFilter",
                        "Histogram Display",
                        "Draws a histogram that Area Histogram has made.",
                        ourOwn("Core Image documents the inputs; colours and heights are our own"),
                        "10.?",
                        categories("Reduction Video StillImage BuiltIn"),
                        {imageInput(),
                         numberInput("inputHeight", "Height", "Scalar",
                                     {.value = 100, .min = 1, .max = 200, .sliderMin = 1, .sliderMax = 100}),
                         numberInput("inputHighLimit", "High Limit", "Scalar",
                                     {.value = 1, .min = 0, .max = 1, .sliderMin = 0, .sliderMax = 1}),
                         numberInput("inputLowLimit", "Low Limit", "Scalar",
                                     {.value = 0, .min = 0, .max = 1, .sliderMin = 0, .sliderMax = 1})},
                        build}};

} // namespace

} // namespace engine
