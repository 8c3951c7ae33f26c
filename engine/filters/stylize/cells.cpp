// Pictures in cells of one colour each: squares, hexagons, crystals, dots.
#include "registry.h"
#include "resample.h"

#include <cmath>

namespace engine {

namespace {

/// Which cell a pixel belongs to, and how much of the pixel shows it.
struct Place {
    int i, j;
    float coverage;
};

class Cells {
  public:
    virtual ~Cells() = default;
    /// Of the point (x, y) from the centre of the pattern.
    virtual Place find(double x, double y) const = 0;
    /// No two points of a cell are farther apart in x or y.
    virtual double reach() const = 0;
};

class Squares : public Cells {
  public:
    explicit Squares(double side) : side_(side) {}
    Place find(double x, double y) const override {
        return {static_cast<int>(std::floor(x / side_ + 0.5)), static_cast<int>(std::floor(y / side_ + 0.5)),
                1};
    }
    double reach() const override { return side_; }

  private:
    double side_;
};

class Hexagons : public Cells {
  public:
    explicit Hexagons(double side) : width_(side * std::sqrt(3.0)), height_(side * 1.5) {}
    Place find(double x, double y) const override {
        // The nearest centre is in the row below the point or in that above it.
        int below = static_cast<int>(std::floor(y / height_));
        Place best{0, 0, 1};
        double least = Rect::inf;
        for (int j : {below, below + 1}) {
            double shift = j & 1 ? 0.5 : 0;
            int i = static_cast<int>(std::floor(x / width_ - shift + 0.5));
            double distance = std::hypot(x - (i + shift) * width_, y - j * height_);
            if (distance < least) least = distance, best.i = i, best.j = j;
        }
        return best;
    }
    double reach() const override { return 2 * width_; }

  private:
    double width_, height_;
};

/// What is nearest to one of many points, of which one lies anywhere in each square of a grid. The squares
/// are as large as a disc of the radius. As dots, no farther from the point than the radius.
class Crystals : public Cells {
  public:
    Crystals(double radius, bool dots)
        : side_(radius * std::sqrt(3.141592653589793)), radius_(radius), dots_(dots) {}
    Place find(double x, double y) const override {
        double u = x / side_, v = y / side_, least = Rect::inf;
        int column = static_cast<int>(std::floor(u)), row = static_cast<int>(std::floor(v));
        Place best{column, row, 1};
        // How far, squared, a position is at least from what lies in a column or row of squares.
        auto away = [](double position, int square) {
            double d = std::max({square - position, position - square - 1, 0.0});
            return d * d;
        };
        for (int dj : {0, -1, 1, -2, 2}) {
            int j = row + dj;
            if (away(v, j) >= least) continue;
            for (int di : {0, -1, 1, -2, 2}) {
                int i = column + di;
                if (away(u, i) + away(v, j) >= least) continue;
                std::uint32_t random = scrambled(i, j);
                double dx = i + (random & 0xffff) / 65536.0 - u, dy = j + (random >> 16) / 65536.0 - v;
                if (double square = dx * dx + dy * dy; square < least) least = square, best.i = i, best.j = j;
            }
        }
        least = std::sqrt(least) * side_;
        if (dots_) best.coverage = static_cast<float>(std::clamp(radius_ + 0.5 - least, 0.0, 1.0));
        return best;
    }
    double reach() const override { return 3 * side_; }

  private:
    /// Bits that look random, always the same for a square (the finishing steps of G. L. Steele and others'
    /// SplitMix, 2014, for 32 bits).
    static std::uint32_t scrambled(int i, int j) {
        std::uint32_t z =
            static_cast<std::uint32_t>(i) * 0x9e3779b9u + static_cast<std::uint32_t>(j) * 0x85ebca6bu;
        z = (z ^ (z >> 16)) * 0x85ebca6bu;
        z = (z ^ (z >> 13)) * 0xc2b2ae35u;
        return z ^ (z >> 16);
    }

    double side_, radius_;
    bool dots_;
};

/// Each pixel the mean of its cell, what is outside of the picture being transparent.
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
        std::vector<Place> places;
        places.reserve(static_cast<std::size_t>(area.width()) * area.height());
        for (int y = area.y0; y < area.y1; ++y)
            for (int x = area.x0; x < area.x1; ++x) {
                places.push_back(at(x, y));
                sums[{places.back().i, places.back().j}];
            }
        IntRect read{area.x0 - reach_, area.y0 - reach_, area.x1 + reach_, area.y1 + reach_};
        auto take = [&](int y, const Span* row) {
            // Neighbours mostly are in one cell.
            std::pair<int, int> last{};
            Sum* sum = nullptr;
            for (int i = 0; i < read.width(); ++i) {
                bool here = area.contains({read.x0 + i, y, read.x0 + i + 1, y + 1});
                Place p =
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
        // Rows where the picture is nothing are not told.
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

    Place at(int x, int y) const { return cells_->find(x + 0.5 - centre_.x, y + 0.5 - centre_.y); }

    std::string name_;
    Point centre_;
    std::shared_ptr<const Cells> cells_;
    int reach_;
};

/// At the centre is the middle of a cell, or the corner of the squares that the points of crystals lie in.
/// (That a cell is its mean is what these filters promise; the sizes and the places of the points are ours.)
Image cells(const Inputs& in, const char* size, std::shared_ptr<const Cells> (*make)(double size)) {
    Image image = in.image("inputImage");
    if (!image || image->extent().isEmpty()) return image;
    Point centre = in.point("inputCenter");
    centre = {std::clamp(centre.x, -1e6, 1e6), std::clamp(centre.y, -1e6, 1e6)};
    return std::make_shared<CellNode>("cells", image, centre, make(in.number(size, 1, 250)));
}

const Registrar pixellate{{"CIPixellate",
                           "Pixelate",
                           "Makes a picture of squares of one colour each.",
                           "10.4",
                           categories("Stylize Video StillImage BuiltIn"),
                           {imageInput(), vectorInput("inputCenter", "Center", "Position", {150, 150}),
                            numberInput("inputScale", "Scale", "Distance",
                                        {.value = 8, .min = 1, .sliderMin = 1, .sliderMax = 100})},
                           [](const Inputs& in) {
                               return cells(in, "inputScale",
                                            [](double side) -> std::shared_ptr<const Cells> {
                                                return std::make_shared<Squares>(side);
                                            });
                           }}};

const Registrar hexagonal{
    {"CIHexagonalPixellate",
     "Hexagonal Pixelate",
     "Makes a picture of hexagons of one colour each.",
     "10.5",
     categories("Stylize Video StillImage BuiltIn"),
     {imageInput(), vectorInput("inputCenter", "Center", "Position", {150, 150}),
      numberInput("inputScale", "Scale", "Distance",
                  {.value = 8, .identity = 1, .min = 1, .sliderMin = 1, .sliderMax = 100})},
     [](const Inputs& in) {
         return cells(in, "inputScale", [](double side) -> std::shared_ptr<const Cells> {
             return std::make_shared<Hexagons>(side);
         });
     }}};

InputInfo radiusInput() {
    return numberInput("inputRadius", "Radius", "Distance",
                       {.value = 20, .identity = 1, .min = 1, .sliderMin = 1, .sliderMax = 100});
}

const Registrar crystallize{
    {"CICrystallize",
     "Crystallize",
     "Makes a picture of crystals of one colour each.",
     "10.4",
     categories("Stylize Video StillImage BuiltIn"),
     {imageInput(), radiusInput(), vectorInput("inputCenter", "Center", "Position", {150, 150})},
     [](const Inputs& in) {
         return cells(in, "inputRadius", [](double radius) -> std::shared_ptr<const Cells> {
             return std::make_shared<Crystals>(radius, false);
         });
     }}};

const Registrar pointillize{
    {"CIPointillize",
     "Pointillize",
     "Paints a picture with dots of one colour each.",
     "10.4",
     categories("Stylize Video StillImage BuiltIn"),
     {imageInput(), radiusInput(), vectorInput("inputCenter", "Center", "Position", {150, 150})},
     [](const Inputs& in) {
         return cells(in, "inputRadius", [](double radius) -> std::shared_ptr<const Cells> {
             return std::make_shared<Crystals>(radius, true);
         });
     }}};

} // namespace

} // namespace engine
