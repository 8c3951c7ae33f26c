// An area in one row of pixels: the means of its rows or columns, or how often each brightness is in it.
#include "registry.h"
#include "resample.h"

#include <cmath>

namespace engine {

namespace {

using Row = std::vector<std::array<double, 4>>;
/// Takes in pixels of row y of the area, both counted from the area's corner.
using Add = std::function<void(Row& sums, int y, const Span& pixels, int n)>;

/// One row of pixels that sums up an area.
class RowNode : public Node {
  public:
    RowNode(const Image& image, const IntRect& area, int count, double scale, Add add)
        : Node({0, 0, 1.0 * count, 1}, {image}), area_(area), count_(count), scale_(scale),
          add_(std::move(add)) {}

    std::string name() const override { return "area row"; }
    bool materialises() const override { return true; }
    Rect regionOfInterest(std::size_t, const Rect&) const override { return toRect(area_); }
    std::shared_ptr<Evaluator> prepare(const IntRect& area, RenderContext& context) const override {
        Row sums(count_);
        auto take = [&](int y, const Span& row) { add_(sums, y - area_.y0, row, area_.width()); };
        // Rows where the picture is nothing are not told, but they count.
        Pixels nothing({0, 0, area_.width(), 1});
        nothing.clear();
        int next = area_.y0;
        context.stream(inputs()[0], area_, [&](int y, const Span& row) {
            while (next < y) take(next++, nothing.row(0));
            take(next++, row);
        });
        while (next < area_.y1) take(next++, nothing.row(0));
        Pixels out(area);
        for (int x = area.x0; x < area.x1; ++x)
            for (int c = 0; c < 4; ++c)
                *out.at(x, area.y0).plane[c] = static_cast<float>(sums[x][c] * scale_);
        return std::make_shared<Computed>(std::move(out));
    }

  private:
    IntRect area_;
    int count_;
    double scale_;
    Add add_;
};

/// Of each row one pixel, from the lowest upwards.
Image rowAverage(const Inputs& in) {
    Image image = in.image("inputImage");
    if (!image) return nullptr;
    IntRect area = summedArea(image, in.rect("inputExtent"));
    if (area.isEmpty()) return empty();
    return std::make_shared<RowNode>(image, area, area.height(), 1.0 / area.width(),
                                     [](Row& sums, int y, const Span& pixels, int n) {
                                         for (int c = 0; c < 4; ++c)
                                             for (int i = 0; i < n; ++i)
                                                 sums[y][c] += static_cast<double>(pixels.plane[c][i]);
                                     });
}

/// Of each column one pixel.
Image columnAverage(const Inputs& in) {
    Image image = in.image("inputImage");
    if (!image) return nullptr;
    IntRect area = summedArea(image, in.rect("inputExtent"));
    if (area.isEmpty()) return empty();
    return std::make_shared<RowNode>(image, area, area.width(), 1.0 / area.height(),
                                     [](Row& sums, int, const Span& pixels, int n) {
                                         for (int c = 0; c < 4; ++c)
                                             for (int i = 0; i < n; ++i)
                                                 sums[i][c] += static_cast<double>(pixels.plane[c][i]);
                                     });
}

/// In each component of pixel i, the share of pixels of which that component is in the i-th part of 0..1, so
/// that all pixels together have the scale. Components are straight and in the working space; what is outside
/// of 0..1 counts as 0 or 1. (Core Image tells the size, the scale and that each component is by itself; the
/// rest is ours.)
Image histogram(const Inputs& in) {
    Image image = in.image("inputImage");
    if (!image) return nullptr;
    IntRect area = summedArea(image, in.rect("inputExtent"));
    if (area.isEmpty()) return empty();
    int count = static_cast<int>(std::round(in.number("inputCount", 1, 2048)));
    return std::make_shared<RowNode>(
        image, area, count, in.number("inputScale", 0, 1e6) / area.count(),
        [count](Row& sums, int, const Span& pixels, int n) {
            auto last = static_cast<float>(count - 1), parts = static_cast<float>(count);
            for (int i = 0; i < n; ++i) {
                float alpha = pixels.plane[3][i], scale = alpha > 0 ? parts / alpha : 0;
                for (int c = 0; c < 4; ++c) {
                    float part = pixels.plane[c][i] * (c < 3 ? scale : parts);
                    // What is not a number counts as 0.
                    ++sums[static_cast<std::size_t>(part > 0 ? std::min(part, last) : 0)][c];
                }
            }
        });
}

InputInfo extentInput() { return vectorInput("inputExtent", "Extent", "Rectangle", {0, 0, 640, 80}); }

const Registrar rows{{"CIRowAverage",
                      "Row Average",
                      "Makes a row of pixels with the means of the rows of an area.",
                      "10.5",
                      categories("Reduction Video StillImage BuiltIn"),
                      {imageInput(), extentInput()},
                      rowAverage}};

const Registrar columns{{"CIColumnAverage",
                         "Column Average",
                         "Makes a row of pixels with the means of the columns of an area.",
                         "10.5",
                         categories("Reduction Video StillImage BuiltIn"),
                         {imageInput(), extentInput()},
                         columnAverage}};

const Registrar histograms{
    {"CIAreaHistogram",
     "Area Histogram",
     "Makes a row of pixels that tell how often each component has each value in an area.",
     "10.5",
     categories("Reduction Video StillImage BuiltIn"),
     {imageInput(), extentInput(),
      numberInput("inputCount", "Count", "Scalar",
                  {.value = 64, .min = 1, .max = 2048, .sliderMin = 10, .sliderMax = 1000}),
      numberInput("inputScale", "Scale", "Scalar", {.value = 1, .min = 0, .sliderMin = 0, .sliderMax = 1})},
     histogram}};

} // namespace

} // namespace engine
