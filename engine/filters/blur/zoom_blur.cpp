// CIZoomBlur.
#include "filter.h"
#include "kernel.h"
#include "resample.h"

#include <cmath>

namespace engine {

namespace {

/// The mean of the picture at all sizes that a steady zoom passes on its way from the picture's own size to
/// e^(amount / 100) times that, so that opposite amounts are opposite zooms. (The name and the inputs are
/// Core Image's; the formula is ours.)
class ZoomNode : public Node {
  public:
    ZoomNode(const Image& image, Point centre, double amount)
        : Node(image->extent().unite(scaled(image->extent(), centre, std::exp(amount / 100))), {image}),
          centre_(centre), zoom_(-amount / 100) {}

    std::string name() const override { return "zoom blur"; }
    bool materialises() const override { return true; }
    Rect regionOfInterest(std::size_t, const Rect& area) const override {
        return area.unite(scaled(area, centre_, std::exp(zoom_))).grown(2, 2);
    }
    std::shared_ptr<Evaluator> prepare(const IntRect& area, RenderContext& context) const override {
        Pixels out(area);
        out.clear();
        add(area, 0, 1, out, context);
        return std::make_shared<Computed>(std::move(out));
    }

  private:
    static constexpr int piece = 64, mostReadings = 4096;

    static Rect scaled(const Rect& r, Point centre, double factor) {
        auto edge = [=](double v, double c) { return c + (v - c) * factor; };
        return {edge(r.x0, centre.x), edge(r.y0, centre.y), edge(r.x1, centre.x), edge(r.y1, centre.y)};
    }

    /// Adds the sizes from `begin` to `end` of the zoom to an area. When that reads more than can be kept,
    /// the zoom is halved for as long as it is what makes the reading large, and then the area is.
    void add(const IntRect& area, double begin, double end, const Pixels& out, RenderContext& context) const {
        auto at = [&](double t) { return scaled(toRect(area), centre_, std::exp(zoom_ * t)); };
        Rect first = at(begin), last = at(end), all = first.unite(last).grown(2, 2);
        IntRect read = toInt(all).intersect(toInt(inputs()[0]->extent().integral().grown(1, 1)));
        if (read.isEmpty()) return;
        if (read.count() > mostKept) {
            double one = std::max(toInt(first).count(), toInt(last).count());
            if (read.count() > 2 * one && end - begin > 0.5 / mostReadings) {
                double middle = (begin + end) / 2;
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
        Pixels in(read);
        fill(*context.prepare(inputs()[0], read), in);
        for (int y = area.y0; y < area.y1; ++y)
            for (int x = area.x0; x < area.x1;) {
                // Pieces begin at the same places however the picture is cut into tiles.
                int next = std::min(area.x1, (floorDiv(x, piece) + 1) * piece);
                addPiece(in, x, y, next - x, begin, end, out.at(x, y));
                x = next;
            }
    }

    void addPiece(const Pixels& in, int x, int y, int n, double begin, double end, const Span& out) const {
        double dx = x + 0.5 - centre_.x, dy = y + 0.5 - centre_.y;
        double left = floorDiv(x, piece) * piece + 0.5 - centre_.x, right = left + piece - 1;
        double far = std::hypot(std::max(std::abs(left), std::abs(right)), dy);
        // The sizes are a pixel apart where the piece is farthest from the centre.
        double length = far * std::abs(std::expm1(zoom_));
        int count = static_cast<int>(std::clamp(length + 1, 2.0, 1.0 * mostReadings));
        alignas(32) float u[piece], v[piece];
        SpanBuffer buffer;
        Span read = buffer.span();
        for (int k = static_cast<int>(std::ceil(begin * count - 0.5)); (k + 0.5) < end * count; ++k) {
            double size = std::exp(zoom_ * (k + 0.5) / count);
            double u0 = centre_.x + dx * size - 0.5 - in.area.x0;
            float row = static_cast<float>(centre_.y + dy * size - 0.5 - in.area.y0);
            for (int i = 0; i < n; ++i) {
                u[i] = static_cast<float>(u0 + i * size);
                v[i] = row;
            }
            readBilinear(in, u, v, n, read);
            float weight = 1 / static_cast<float>(count);
            for (int c = 0; c < 4; ++c)
                eachIndex(n, [=, from = read.plane[c], to = out.plane[c]](int i)
                                 SIMD_INLINE { to[i] += weight * from[i]; });
        }
    }

    Point centre_;
    double zoom_;
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
                        "10.4",
                        categories("Blur StillImage Video BuiltIn"),
                        {imageInput(), vectorInput("inputCenter", "Center", "Position", {150, 150}),
                         numberInput("inputAmount", "Amount", "Distance",
                                     {.value = 20, .identity = 0, .sliderMin = -200, .sliderMax = 200})},
                        build}};

} // namespace

} // namespace engine
