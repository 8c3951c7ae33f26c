// Images as a sampler reads them.
#include "resample.h"

#include <cmath>
#include <stdexcept>

namespace engine {

namespace {

class SamplerNode : public Node {
  public:
    SamplerNode(const Image& image, const Affine& matrix, const Affine& inverse, Interpolation interpolation)
        : Node(matrix.apply(read(*image, interpolation)), {image}), inverse_(inverse),
          interpolation_(interpolation) {}

    std::string name() const override { return "sampler"; }
    bool materialises() const override { return true; }
    Rect regionOfInterest(std::size_t, const Rect& area) const override {
        return inverse_.apply(area).grown(1, 1);
    }

    std::shared_ptr<Evaluator> prepare(const IntRect& area, RenderContext& context) const override {
        // With the transparent pixels around the image, to which places beyond are moved.
        IntRect readable = toInt(inputs()[0]->extent().integral().grown(1, 1));
        auto needed = [&](const IntRect& part) {
            return toInt(centresOf(part, inverse_).grown(2, 2)).intersect(readable);
        };
        Pixels out(area);
        computeInParts(area, out, needed, [&](const IntRect& part, const IntRect& read) {
            Pixels in(read);
            fill(*context.prepare(inputs()[0], read), in);
            for (int y = part.y0; y < part.y1; ++y)
                for (int x = part.x0; x < part.x1; x += maxSpan)
                    row(x, y, std::min(maxSpan, part.x1 - x), in, out.at(x, y));
        });
        return std::make_shared<Computed>(std::move(out));
    }

  private:
    /// Where a reading can meet the image.
    static Rect read(const Node& image, Interpolation interpolation) {
        double reach = interpolation == Interpolation::linear ? 0.5 : 0;
        return image.extent().integral().grown(reach, reach);
    }

    void row(int x, int y, int n, const Pixels& in, const Span& out) const {
        alignas(32) float u[maxSpan], v[maxSpan];
        Point from = inverse_.apply(Point{x + 0.5, y + 0.5});
        // Places are computed in double precision, so that "nearest" is the right pixel far away, too.
        for (int i = 0; i < n; ++i) {
            double px = from.x + i * inverse_.a - in.area.x0, py = from.y + i * inverse_.b - in.area.y0;
            bool linear = interpolation_ == Interpolation::linear;
            u[i] = static_cast<float>(linear ? px - 0.5 : std::floor(px));
            v[i] = static_cast<float>(linear ? py - 0.5 : std::floor(py));
        }
        readBilinear(in, u, v, n, out);
    }

    Affine inverse_;
    Interpolation interpolation_;
};

} // namespace

Image sampled(const Image& image, const Affine& matrix, Wrap wrap, Interpolation interpolation) {
    if (!matrix.isFinite()) throw std::invalid_argument("a sampler's matrix needs finite numbers");
    if (!image) return nullptr;
    auto inverse = matrix.inverse();
    if (!inverse || image->extent().isEmpty()) return empty();
    Image endless = wrap == Wrap::clamp ? clampToEdge(image) : image;
    // No reading falls between pixels then.
    if (isWholeMove(matrix)) return transform(endless, matrix);
    return std::make_shared<SamplerNode>(endless, matrix, *inverse, interpolation);
}

} // namespace engine
