// Reading a cascade and looking through its window at every place and in every size.
#include "cascade.h"

#include "bitmaps.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iterator>
#include <numeric>
#include <sstream>
#include <stdexcept>

namespace vision {
namespace {

/// From one size of window to the next.
constexpr double kGrowth = 1.15;

/// Two sightings are of one thing when no side of their squares is farther apart than this, as a fraction of
/// the mean side.
constexpr double kTolerance = 0.2;

template <class T>
std::vector<T> numbers(const std::string& text) {
    std::istringstream in(text);
    return {std::istream_iterator<T>(in), {}};
}

bool alike(const Sighting& a, const Sighting& b) {
    double most = kTolerance * (a.side + b.side) / 2;
    return std::abs(a.x - b.x) <= most && std::abs(a.y - b.y) <= most &&
           std::abs(a.x + a.side - b.x - b.side) <= most && std::abs(a.y + a.side - b.y - b.side) <= most;
}

/// The mean of each group of sightings that are alike, directly or through others.
std::vector<Sighting> grouped(const std::vector<Sighting>& all, int leastVotes) {
    std::vector<std::size_t> group(all.size());
    std::iota(group.begin(), group.end(), 0u);
    auto head = [&](std::size_t i) {
        while (group[i] != i) i = group[i] = group[group[i]];
        return i;
    };
    for (std::size_t i = 0; i < all.size(); ++i)
        for (std::size_t j = 0; j < i; ++j)
            if (alike(all[i], all[j])) group[head(i)] = head(j);
    std::vector<Sighting> sums(all.size());
    for (std::size_t i = 0; i < all.size(); ++i) {
        Sighting& sum = sums[head(i)];
        sum = {sum.x + all[i].x, sum.y + all[i].y, sum.side + all[i].side, sum.votes + 1};
    }
    std::vector<Sighting> means;
    for (const Sighting& sum : sums)
        if (sum.votes >= leastVotes)
            means.push_back({sum.x / sum.votes, sum.y / sum.votes, sum.side / sum.votes, sum.votes});
    return means;
}

} // namespace

Cascade::Cascade(const std::string& file) {
    std::ifstream in(file);
    if (!in) throw std::runtime_error("cannot read " + file);
    std::string tag, text;
    // Every value stands between a tag and the next one.
    while (std::getline(std::getline(in, text, '<'), tag, '>')) {
        std::getline(in, text, '<');
        in.unget();
        if (tag == "width") side_ = std::atoi(text.c_str());
        // Sums of leaves may differ from a threshold that they reach by their rounding.
        if (tag == "stageThreshold") stages_.push_back({std::strtof(text.c_str(), nullptr) - 1e-5f, {}});
        if (tag == "internalNodes" && !stages_.empty()) {
            std::vector<double> n = numbers<double>(text);
            Tree tree;
            for (std::size_t i = 0; i + 3 < n.size(); i += 4)
                tree.nodes.push_back({static_cast<std::size_t>(n[i + 2]), static_cast<float>(n[i + 3]),
                                      static_cast<int>(n[i]), static_cast<int>(n[i + 1])});
            stages_.back().trees.push_back(std::move(tree));
        }
        if (tag == "leafValues" && !stages_.empty() && !stages_.back().trees.empty())
            stages_.back().trees.back().leaves = numbers<float>(text);
        if (tag == "rects") features_.emplace_back();
        if (tag == "_" && !features_.empty())
            if (std::vector<float> n = numbers<float>(text); n.size() == 5)
                features_.back().push_back({static_cast<int>(n[0]), static_cast<int>(n[1]),
                                            static_cast<int>(n[2]), static_cast<int>(n[3]), n[4]});
    }
    try {
        check();
    } catch (const std::exception& e) {
        throw std::runtime_error(file + " is damaged: " + e.what());
    }
    // Flat areas must give 0, whatever the rounding of the weights.
    for (Feature& feature : features_) {
        float others = 0;
        for (std::size_t i = 1; i < feature.size(); ++i)
            others += feature[i].weight * static_cast<float>(feature[i].width * feature[i].height);
        feature[0].weight = -others / static_cast<float>(feature[0].width * feature[0].height);
    }
}

/// Throws unless every index leads somewhere and every walk through a tree ends.
void Cascade::check() const {
    auto demand = [](bool fine, const char* problem) {
        if (!fine) throw std::runtime_error(problem);
    };
    demand(side_ >= 8 && side_ <= 64 && !stages_.empty() && !features_.empty(), "it has no cascade");
    for (const Feature& feature : features_) {
        demand(feature.size() >= 2, "a feature lacks rectangles");
        for (const Rectangle& r : feature)
            demand(r.x >= 0 && r.y >= 0 && r.width > 0 && r.height > 0 && r.x + r.width <= side_ &&
                       r.y + r.height <= side_,
                   "a rectangle leaves the window");
    }
    for (const Stage& stage : stages_)
        for (const Tree& tree : stage.trees) {
            int nodes = static_cast<int>(tree.nodes.size());
            demand(nodes > 0, "a tree is empty");
            for (int i = 0; i < nodes; ++i) {
                const Node& node = tree.nodes[static_cast<std::size_t>(i)];
                demand(node.feature < features_.size(), "a feature is missing");
                for (int next : {node.below, node.otherwise})
                    demand(next > 0 ? next > i && next < nodes
                                    : static_cast<std::size_t>(-next) < tree.leaves.size(),
                           "a branch leads nowhere");
            }
        }
}

/// The picture in one size, as sums over all pixels above and to the left.
class Cascade::Level {
  public:
    Level(const Cascade& cascade, const Grey& grey)
        : cascade_(cascade), stride_(static_cast<std::size_t>(grey.width) + 1) {
        sums_.resize(stride_ * (static_cast<std::size_t>(grey.height) + 1));
        squares_.resize(sums_.size());
        for (std::size_t y = 1, pixel = 0; y <= static_cast<std::size_t>(grey.height); ++y) {
            std::uint32_t sum = 0;
            std::uint64_t square = 0;
            for (std::size_t x = 1; x < stride_; ++x) {
                std::uint32_t v = grey.pixels[pixel++];
                sum += v;
                square += v * v;
                sums_[y * stride_ + x] = sums_[(y - 1) * stride_ + x] + sum;
                squares_[y * stride_ + x] = squares_[(y - 1) * stride_ + x] + square;
            }
        }
        for (const Feature& feature : cascade.features_) {
            starts_.push_back(corners_.size());
            for (const Rectangle& r : feature) corners_.push_back(corners(r));
        }
        starts_.push_back(corners_.size());
    }

    /// Whether the window at that place passes every stage.
    bool passes(std::size_t x, std::size_t y) const {
        std::size_t window = y * stride_ + x;
        // Thresholds are multiples of the deviation, which is measured without the outermost pixels.
        int inner = cascade_.side_ - 2;
        Corners middle = corners({1, 1, inner, inner, 1});
        double area = inner * inner, mean = sumOf(sums_, middle, window) / area;
        double variance = static_cast<double>(sumOf(squares_, middle, window)) / area - mean * mean;
        if (variance < 1) return false;
        auto unit = static_cast<float>(area * std::sqrt(variance));
        for (const Stage& stage : cascade_.stages_) {
            float sum = 0;
            for (const Tree& tree : stage.trees) {
                int at = 0;
                do {
                    const Node& node = tree.nodes[static_cast<std::size_t>(at)];
                    at = value(node.feature, window) < node.threshold * unit ? node.below : node.otherwise;
                } while (at > 0);
                sum += tree.leaves[static_cast<std::size_t>(-at)];
            }
            if (sum < stage.threshold) return false;
        }
        return true;
    }

  private:
    /// Places in the sums, from the window's; and the rectangle's weight.
    struct Corners {
        std::size_t a, b, c, d;
        float weight;
    };

    Corners corners(const Rectangle& r) const {
        auto at = [&](int x, int y) {
            return static_cast<std::size_t>(y) * stride_ + static_cast<std::size_t>(x);
        };
        return {at(r.x, r.y), at(r.x + r.width, r.y), at(r.x, r.y + r.height),
                at(r.x + r.width, r.y + r.height), r.weight};
    }
    /// Wrapped sums subtract to the right difference.
    template <class T>
    static T sumOf(const std::vector<T>& sums, const Corners& r, std::size_t window) {
        return sums[window + r.a] - sums[window + r.b] - sums[window + r.c] + sums[window + r.d];
    }
    float value(std::size_t feature, std::size_t window) const {
        float value = 0;
        for (std::size_t i = starts_[feature]; i < starts_[feature + 1]; ++i)
            value += corners_[i].weight * static_cast<float>(sumOf(sums_, corners_[i], window));
        return value;
    }

    const Cascade& cascade_;
    std::size_t stride_;
    std::vector<std::uint32_t> sums_;
    std::vector<std::uint64_t> squares_;
    std::vector<std::size_t> starts_;
    std::vector<Corners> corners_;
};

std::vector<Sighting> Cascade::find(const GreyBitmap& bitmap, double smallest, int leastVotes) const {
    std::vector<Sighting> all;
    for (double side = std::max<double>(smallest, side_); side <= std::min(bitmap.width, bitmap.height);
         side *= kGrowth) {
        double step = side / side_;
        Grey grey = resampled(bitmap, 0, 0, step, static_cast<int>(bitmap.width / step),
                              static_cast<int>(bitmap.height / step));
        Level level(*this, grey);
        // Small windows are as far apart in the bitmap as large ones.
        int stride = step > 2 ? 1 : 2;
        for (int y = 0; y + side_ <= grey.height; y += stride)
            for (int x = 0; x + side_ <= grey.width; x += stride)
                if (level.passes(static_cast<std::size_t>(x), static_cast<std::size_t>(y)))
                    all.push_back({x * step, y * step, side, 1});
    }
    return grouped(all, leastVotes);
}

} // namespace vision
