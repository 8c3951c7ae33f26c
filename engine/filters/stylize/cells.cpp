// The means of a picture's cells.
#include "cells.h"
#include "resample.h"

namespace engine {

namespace {

/// Each pixel is the mean of its cell; outside of the picture all is transparent.
class CellNode : public Node {
  public:
    CellNode(std::string name, const Image& image, Point centre, std::shared_ptr<const Cells> cells)
        : Node(image->extent().grown(std::ceil(cells->reach()), std::ceil(cells->reach())), {image}),
          name_(std::move(name)), centre_(centre), cells_(std::move(cells)),
          reach_(static_cast<int>(std::ceil(cells_->reach()))) {}

    std::string name() const override { return name_; }
    bool materialises() const override { return true; }
    Rect regionOfInterest(std::size_t, const Rect& area) const override { return area.grown(reach_, reach_); }
    std::shared_ptr<Evaluator> prepare(const IntRect& area, RenderContext& context) const override {
        std::map<std::pair<int, int>, Sum> sums;
        std::vector<CellPlace> places;
        places.reserve(static_cast<std::size_t>(area.width()) * area.height());
        for (int y = area.y0; y < area.y1; ++y)
            for (int x = area.x0; x < area.x1; ++x) {
                places.push_back(at(x, y));
                sums[{places.back().i, places.back().j}];
            }
        IntRect read{area.x0 - reach_, area.y0 - reach_, area.x1 + reach_, area.y1 + reach_};
        auto take = [&](int y, const Span* row) {
            // Neighbours are mostly in the same cell.
            std::pair<int, int> last{};
            Sum* sum = nullptr;
            for (int i = 0; i < read.width(); ++i) {
                bool here = area.contains({read.x0 + i, y, read.x0 + i + 1, y + 1});
                CellPlace p =
                    here
                        ? places[static_cast<std::size_t>(y - area.y0) * area.width() + read.x0 + i - area.x0]
                        : at(read.x0 + i, y);
                if (i == 0 || last != std::pair{p.i, p.j}) {
                    last = {p.i, p.j};
                    auto found = sums.find(last);
                    sum = found == sums.end() ? nullptr : &found->second;
                }
                if (!sum) continue;
                ++sum->count;
                if (row)
                    for (int c = 0; c < 4; ++c) sum->components[c] += static_cast<double>(row->plane[c][i]);
            }
        };
        // Transparent rows are skipped, but they count.
        int next = read.y0;
        context.stream(inputs()[0], read, [&](int y, const Span& row) {
            while (next < y) take(next++, nullptr);
            take(next++, &row);
        });
        while (next < read.y1) take(next++, nullptr);

        Pixels out(area);
        auto place = places.begin();
        for (int y = area.y0; y < area.y1; ++y)
            for (int x = area.x0; x < area.x1; ++x, ++place) {
                const Sum& sum = sums[{place->i, place->j}];
                for (int c = 0; c < 4; ++c)
                    *out.at(x, y).plane[c] =
                        place->coverage * static_cast<float>(sum.components[c] / sum.count);
            }
        return std::make_shared<Computed>(std::move(out));
    }

  private:
    struct Sum {
        std::array<double, 4> components{};
        double count = 0;
    };

    CellPlace at(int x, int y) const { return cells_->find(x + 0.5 - centre_.x, y + 0.5 - centre_.y); }

    std::string name_;
    Point centre_;
    std::shared_ptr<const Cells> cells_;
    int reach_;
};

} // namespace

Image meansOfCells(const Inputs& in, std::shared_ptr<const Cells> cells) {
    Image image = in.image("inputImage");
    if (!image || image->extent().isEmpty()) return image;
    Point centre = in.point("inputCenter");
    centre = {std::clamp(centre.x, -1e6, 1e6), std::clamp(centre.y, -1e6, 1e6)};
    return std::make_shared<CellNode>("cells", image, centre, std::move(cells));
}

} // namespace engine
