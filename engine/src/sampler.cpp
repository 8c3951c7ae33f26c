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
        auto needed = [this, readable](const IntRect& part) {
            Rect centres = centresOf(part, inverse_);
            return toInt({centres.x0 - 2, centres.y0 - 2, centres.x1 + 2, centres.y1 + 2})
                .intersect(readable);
        };
        const Node& input = *inputs()[0];
        auto compute = [=, this, &context, most = mostKeptOf(input)](const Pixels& out) {
            computeInParts(out.area, out, most, needed, [&](const IntRect& part, const IntRect& read) {
                Texels in(*context.prepare(inputs()[0], read), read);
                for (int y = part.y0; y < part.y1; ++y)
                    eachBlock(part.x0, part.width(), [&](int x, int n) { row(x, y, n, in, out.at(x, y)); });
            });
        };
        return std::make_shared<Bands>(area, bandHeight(input, area), compute);
    }

  private:
    /// Where a reading can meet the image.
    static Rect read(const Node& image, Interpolation interpolation) {
        double reach = interpolation == Interpolation::linear ? 0.5 : 0;
        return image.extent().integral().grown(reach, reach);
    }

    void row(int x, int y, int n, const Texels& in, const Span& out) const {
        constexpr int width = 32;
        float u[width], v[width];
        Readings readings(in);
        eachBlock<width>(x, n, [&](int first, int count) {
            Point from = inverse_.apply(Point{anchorOf<width>(first) + 0.5, y + 0.5});
            int baseX = wholePart(from.x), baseY = wholePart(from.y);
            // Places are computed in double precision, so that "nearest" is the right pixel far away, too.
            for (int i = 0; i < count; ++i) {
                Point place = inverse_.apply(Point{first + i + 0.5, y + 0.5});
                double px = place.x - baseX, py = place.y - baseY;
                bool linear = interpolation_ == Interpolation::linear;
                u[i] = static_cast<float>(linear ? px - 0.5 : std::floor(px));
                v[i] = static_cast<float>(linear ? py - 0.5 : std::floor(py));
            }
            readings.locate(first - x, baseX, baseY, 0, u, v, count);
        });
        readings.read(n, out);
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
