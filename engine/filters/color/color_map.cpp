// CIColorMap: the colours of a gradient, by brightness.
#include "filter.h"
#include "kernel.h"
#include "resample.h"

namespace engine {

namespace {

/// Looks the linear luminance of each pixel up in the lowest row of a gradient, which it reads as a line from
/// the left edge for black to the right edge for white.
class ColorMapNode : public Node {
  public:
    ColorMapNode(const Image& image, const Image& gradient)
        : Node(image->extent(), {image, gradient}), row_(toInt(gradient->extent())) {
        row_.y1 = row_.y0 + 1;
    }

    std::string name() const override { return "color map"; }
    Rect regionOfInterest(std::size_t index, const Rect& area) const override {
        return index == 0 ? area : toRect(row_);
    }
    std::shared_ptr<Evaluator> prepare(const IntRect& area, RenderContext& context) const override {
        Texels gradient(*context.prepare(inputs()[1], row_), row_);
        return std::make_shared<Lookup>(context.prepare(inputs()[0], area), std::move(gradient));
    }

  private:
    class Lookup : public Evaluator {
      public:
        Lookup(std::shared_ptr<Evaluator> input, Texels gradient)
            : input_(std::move(input)), gradient_(std::move(gradient)) {}

        void row(int x, int y, int n, const Span& out) override {
            alignas(32) float place[maxSpan], zero[maxSpan] = {}, alpha[maxSpan];
            input_->row(x, y, n, out);
            float width = static_cast<float>(gradient_.area.width());
            eachIndex(n, [=, place = place, alpha = alpha](int i) SIMD_INLINE {
                Pixel p = load(out, i);
                float light = luminance(p) * unpremultiply(p.a);
                place[i] = width * simd::unit(light) - 0.5f;
                alpha[i] = p.a;
            });
            readBilinear(gradient_, gradient_.area.x0, gradient_.area.y0, place, zero, n, out);
            for (float* p : out.plane)
                eachIndex(n, [=, alpha = alpha](int i) SIMD_INLINE { p[i] *= alpha[i]; });
        }

      private:
        std::shared_ptr<Evaluator> input_;
        Texels gradient_;
    };

    IntRect row_;
};

/// Without a gradient, or with an endless one, the picture stays as it is.
Image build(const Inputs& in) {
    Image image = in.image("inputImage"), gradient = in.image("inputGradientImage");
    if (!image || !gradient || gradient->extent().isEmpty() || gradient->extent().isInfinite()) return image;
    return std::make_shared<ColorMapNode>(image, gradient);
}

InputInfo gradientInput() {
    InputInfo info = imageInput("inputGradientImage", "Gradient Image");
    info.type = "Gradient";
    return info;
}

const Registrar filter{{"CIColorMap",
                        "Color Map",
                        "Gives a picture the colours of a gradient, by how bright it is.",
                        fitted("linear luminance looked up in the gradient's lowest row", 0.28),
                        "10.4",
                        categories("ColorEffect Video Interlaced NonSquarePixels StillImage BuiltIn"),
                        {imageInput(), gradientInput()},
                        build}};

} // namespace

} // namespace engine
