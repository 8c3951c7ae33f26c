// CIAffineTile: a picture, transformed, that repeats without end.
#include "filter.h"

namespace engine {

namespace {

/// Whole copies side by side: pixel (x, y) is pixel (x mod width, y mod height), counted from the corner.
class Repeated : public Node {
  public:
    explicit Repeated(const Image& image) : Node(Rect::infinite(), {image}), cell_(toInt(image->extent())) {}

    std::string name() const override { return "tile"; }
    Rect regionOfInterest(std::size_t, const Rect&) const override { return toRect(cell_); }
    std::shared_ptr<Evaluator> prepare(const IntRect& area, RenderContext& context) const override {
        return std::make_shared<Copies>(context.prepare(inputs()[0], read(area)), cell_);
    }

  private:
    class Copies : public Evaluator {
      public:
        Copies(std::shared_ptr<Evaluator> input, const IntRect& cell)
            : input_(std::move(input)), cell_(cell) {}
        void row(int x, int y, int n, const Span& out) override {
            int fromY = y - floorDiv(y - cell_.y0, cell_.height()) * cell_.height();
            for (int done = 0; done < n;) {
                int from = x + done - floorDiv(x + done - cell_.x0, cell_.width()) * cell_.width();
                int count = std::min(n - done, cell_.x1 - from);
                input_->row(from, fromY, count, out.at(done));
                done += count;
            }
        }

      private:
        std::shared_ptr<Evaluator> input_;
        IntRect cell_;
    };

    /// The part of the cell that an area reads: an interval where it stays within one copy, else all.
    IntRect read(const IntRect& area) const {
        IntRect out = cell_;
        int x = floorDiv(area.x0 - cell_.x0, cell_.width()), y = floorDiv(area.y0 - cell_.y0, cell_.height());
        if (floorDiv(area.x1 - 1 - cell_.x0, cell_.width()) == x)
            out.x0 = area.x0 - x * cell_.width(), out.x1 = area.x1 - x * cell_.width();
        if (floorDiv(area.y1 - 1 - cell_.y0, cell_.height()) == y)
            out.y0 = area.y0 - y * cell_.height(), out.y1 = area.y1 - y * cell_.height();
        return out;
    }

    IntRect cell_;
};

/// An infinite picture has no copies.
Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    if (image && !image->extent().isEmpty() && !image->extent().isInfinite())
        image = std::make_shared<Repeated>(image);
    return transform(image, in.affine("inputTransform"));
}

const Registrar filter{{"CIAffineTile",
                        "Affine Tile",
                        "Transforms a picture and repeats it without end.",
                        publicDefinition("copies side by side"),
                        "10.4",
                        categories("TileEffect Video StillImage BuiltIn"),
                        {imageInput(), transformInput("inputTransform", "Transform", "")},
                        build}};

} // namespace

} // namespace engine
