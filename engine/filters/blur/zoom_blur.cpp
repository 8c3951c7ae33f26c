// CIZoomBlur.
#include "filter.h"
#include "kernel.h"
#include "resample.h"

#include <cmath>

namespace engine {

namespace {

/// The mean of the picture in `readings` sizes: a pixel p reads at centre + (p - centre) * k, where k goes
/// from 1 to 1 - a by the law of `size`. (Fitted to Core Image's picture, mean residual 0.24 of 255, in which
/// a is 5/11 with an amount of 30.) That a is amount / (amount + 36) is our guess from this one figure: it
/// alone keeps all readings on this side of the centre and the extent finite for every amount. A negative
/// amount zooms the other way, to the reciprocal sizes; no picture with one is known.
class ZoomNode : public Node {
  public:
    ZoomNode(const Image& image, Point centre, double amount)
        : Node(image->extent().unite(scaled(image->extent(), centre, 1 + std::max(amount, 0.0) / 36)),
               {image}),
          centre_(centre), amount_(amount) {}

    std::string name() const override { return "zoom blur"; }
    bool materialises() const override { return true; }
    Rect regionOfInterest(std::size_t, const Rect& area) const override {
        return area.unite(scaled(area, centre_, size(readings - 1))).grown(2, 2);
    }
    std::shared_ptr<Evaluator> prepare(const IntRect& area, RenderContext& context) const override {
        Pixels out(area);
        out.clear();
        add(area, 0, readings, out, context);
        return std::make_shared<Computed>(std::move(out));
    }

  private:
    static constexpr int readings = 100;

    static double share(double amount) { return std::abs(amount) / (std::abs(amount) + 36); }
    /// The factor of reading j.
    double size(int j) const {
        double t = j / (readings - 1.0), k = 1 - share(amount_) * (1.4 * t - 0.4 * t * t * (3 - 2 * t));
        return amount_ < 0 ? 1 / k : k;
    }
    static Rect scaled(const Rect& r, Point centre, double factor) {
        auto edge = [=](double v, double c) { return c + (v - c) * factor; };
        return {edge(r.x0, centre.x), edge(r.y0, centre.y), edge(r.x1, centre.x), edge(r.y1, centre.y)};
    }

    /// Adds the readings from `begin` to `end` to an area. When they take more than can be kept, they are
    /// halved for as long as they are what makes it large, and then the area is.
    void add(const IntRect& area, int begin, int end, const Pixels& out, RenderContext& context) const {
        auto at = [&](int j) { return scaled(toRect(area), centre_, size(j)); };
        Rect first = at(begin), last = at(end - 1), all = first.unite(last).grown(2, 2);
        IntRect read = toInt(all).intersect(toInt(inputs()[0]->extent().integral().grown(1, 1)));
        if (read.isEmpty()) return;
        if (read.count() > mostKept) {
            double one = std::max(toInt(first).count(), toInt(last).count());
            if (read.count() > 2 * one && end - begin > 1) {
                int middle = (begin + end) / 2;
                add(area, begin, middle, out, context);
                add(area, middle, end, out, context);
                return;
            }
            if (area.count() > 1) {
                auto [a, b] = halves(area);
                add(a, begin, end, out, context);
                add(b, begin, end, out, context);
                return;
            }
        }
        Texels in(*context.prepare(inputs()[0], read), read);
        for (int j = begin; j < end; ++j)
            for (int y = area.y0; y < area.y1; ++y)
                eachBlock(area.x0, area.width(),
                          [&](int x, int n) { addRow(in, x, y, n, size(j), out.at(x, y)); });
    }

    /// Adds one reading to a row. What would be read beyond `in`, which has transparent edges where the image
    /// ends, is left out: far from the picture that is almost all.
    void addRow(const Texels& in, int x, int y, int n, double size, const Span& out) const {
        auto scaled = [=](double v, double c) { return c + (v + 0.5 - c) * size - 0.5; };
        double row = scaled(y, centre_.y);
        if (!(row > in.area.y0 - 1 && row < in.area.y1)) return;
        double u0 = scaled(x, centre_.x) - in.area.x0;
        int from = static_cast<int>(std::clamp(std::floor((-1 - u0) / size), 0.0, 1.0 * n));
        int to = static_cast<int>(std::clamp(std::ceil((in.area.width() - u0) / size) + 1, 0.0, 1.0 * n));
        if (from >= to) return;
        alignas(32) float u[maxSpan], v[maxSpan];
        int anchor = anchorOf(x);
        double first = scaled(anchor, centre_.x);
        int baseX = wholePart(first), baseY = wholePart(row);
        eachIndex(to - from, [=, rest = static_cast<float>(first - baseX), step = static_cast<float>(size),
                              restY = static_cast<float>(row - baseY), offset = x + from - anchor, u = &u[0],
                              v = &v[0]](int i) SIMD_INLINE {
            u[i] = rest + static_cast<float>(i + offset) * step;
            v[i] = restY;
        });
        SpanBuffer buffer;
        Span read = buffer.span(), sum = out.at(from);
        readBilinear(in, baseX, baseY, u, v, to - from, read);
        for (int c = 0; c < 4; ++c)
            eachIndex(to - from, [p = read.plane[c], q = sum.plane[c]](int i)
                                     SIMD_INLINE { q[i] += (1.0f / readings) * p[i]; });
    }

    Point centre_;
    double amount_;
};

Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    double amount = in.number("inputAmount", -1000, 1000);
    Point centre = in.point("inputCenter");
    centre = {std::clamp(centre.x, -1e6, 1e6), std::clamp(centre.y, -1e6, 1e6)};
    if (!image || std::abs(amount) < 1e-6 || image->extent().isEmpty()) return image;
    return std::make_shared<ZoomNode>(image, centre, amount);
}

const Registrar filter{{"CIZoomBlur",
                        "Zoom Blur",
                        "Blurs a picture towards a point, as if the camera zoomed.",
                        fitted("an amount of 30; the law for other amounts is our own", 0.24),
                        "10.4",
                        categories("Blur StillImage Video BuiltIn"),
                        {imageInput(), vectorInput("inputCenter", "Center", "Position", {150, 150}),
                         numberInput("inputAmount", "Amount", "Distance",
                                     {.value = 20, .identity = 0, .sliderMin = -200, .sliderMax = 200})},
                        build}};

} // namespace

} // namespace engine
