// An area in one row of pixels.
#include "area_row.h"
#include "resample.h"

namespace engine {

namespace {

class AreaRowNode : public Node {
  public:
    AreaRowNode(const Image& image, const IntRect& area, AreaRow how)
        : Node({0, 0, 1.0 * how.count, 1}, {image}), area_(area), how_(std::move(how)) {}

    std::string name() const override { return "area row"; }
    bool materialises() const override { return true; }
    Rect regionOfInterest(std::size_t, const Rect&) const override { return toRect(area_); }
    std::shared_ptr<Evaluator> prepare(const IntRect& area, RenderContext& context) const override {
        RowSums sums(how_.count);
        auto take = [&](int y, const Span& row) { how_.add(sums, y - area_.y0, row, area_.width()); };
        // Transparent rows are skipped by the stream, but they count.
        Pixels transparent({0, 0, area_.width(), 1});
        transparent.clear();
        int next = area_.y0;
        context.stream(inputs()[0], area_, [&](int y, const Span& row) {
            while (next < y) take(next++, transparent.row(0));
            take(next++, row);
        });
        while (next < area_.y1) take(next++, transparent.row(0));
        Pixels out(area);
        for (int x = area.x0; x < area.x1; ++x)
            for (int c = 0; c < 4; ++c)
                *out.at(x, area.y0).plane[c] = static_cast<float>(sums[x][c] * how_.scale);
        return std::make_shared<Computed>(std::move(out));
    }

  private:
    IntRect area_;
    AreaRow how_;
};

} // namespace

Image areaRow(const Inputs& in, AreaRow (*how)(const Inputs& in, const IntRect& area)) {
    Image image = in.image("inputImage");
    if (!image) return nullptr;
    IntRect area = summedArea(image, in.rect("inputExtent"));
    if (area.isEmpty()) return empty();
    return std::make_shared<AreaRowNode>(image, area, how(in, area));
}

} // namespace engine
