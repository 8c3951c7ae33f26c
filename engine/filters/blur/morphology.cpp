// CIMorphologyMaximum, CIMorphologyMinimum, CIMorphologyGradient and the two with a rectangle: the extremes
// of each component around a pixel.
#include "filter.h"
#include "kernel.h"
#include "resample.h"

#include <cmath>

namespace engine {

namespace {

struct Larger {
    static constexpr float none = -std::numeric_limits<float>::infinity();
    SIMD_INLINE static float of(float x, float y) { return simd::max(x, y); }
};
struct Smaller {
    static constexpr float none = std::numeric_limits<float>::infinity();
    SIMD_INLINE static float of(float x, float y) { return simd::min(x, y); }
};

/// For each row from the middle outwards, how many pixels a neighbourhood reaches to each side of the middle.
using Shape = std::vector<int>;

/// The pixels whose centres are at most `radius` away.
Shape disc(double radius) {
    Shape shape;
    for (int dy = 0; dy <= radius; ++dy)
        shape.push_back(static_cast<int>(std::sqrt(radius * radius - static_cast<double>(dy) * dy)));
    return shape;
}
Shape rectangle(int reachX, int reachY) { return Shape(reachY + 1, reachX); }

/// Takes the rows of its input one by one. The extremes of 1, 2, 4 ... pixels side by side give those of a
/// stretch of any length by looking at two, so that the work grows with the rows of the shape, not with its
/// area. What is outside of the image is transparent.
template <class Extreme>
class ExtremeNode : public Node {
  public:
    ExtremeNode(const Image& image, const Rect& extent, Shape shape)
        : Node(extent, {image}), shape_(std::move(shape)), reachX_(shape_[0]),
          reachY_(static_cast<int>(shape_.size()) - 1) {}

    std::string name() const override { return "morphology"; }
    bool materialises() const override { return true; }
    Rect regionOfInterest(std::size_t, const Rect& area) const override {
        return area.grown(reachX_, reachY_);
    }
    std::shared_ptr<Evaluator> prepare(const IntRect& area, RenderContext& context) const override {
        Pixels out(area);
        std::fill_n(out.data.get(), out.rowStep() * area.height(), Extreme::none);
        IntRect read{area.x0 - reachX_, area.y0 - reachY_, area.x1 + reachX_, area.y1 + reachY_};
        Stretches stretches(read.width(), 2 * reachX_ + 1);
        Pixels nothing({read.x0, 0, read.x1, 1});
        nothing.clear();
        auto take = [&](int y, const Span& row) {
            for (int c = 0; c < 4; ++c) {
                stretches.of(row.plane[c]);
                for (int dy = -reachY_; dy <= reachY_; ++dy)
                    if (y + dy >= area.y0 && y + dy < area.y1) {
                        int reach = shape_[std::abs(dy)];
                        stretches.add(reachX_ - reach, 2 * reach + 1, out.row(y + dy).plane[c], area.width());
                    }
            }
        };
        // Transparent rows are not streamed, but they count.
        int next = read.y0;
        context.stream(inputs()[0], read, [&](int y, const Span& row) {
            while (next < y) take(next++, nothing.row(0));
            take(next++, row);
        });
        while (next < read.y1) take(next++, nothing.row(0));
        return std::make_shared<Computed>(std::move(out));
    }

  private:
    /// The extremes of 2^k pixels from each pixel of a row onwards.
    class Stretches {
      public:
        Stretches(int width, int longest) : width_(width) {
            for (int length = 1; length <= longest; length *= 2) rows_.emplace_back(width);
        }
        void of(const float* row) {
            std::copy_n(row, width_, rows_[0].begin());
            for (std::size_t k = 1; k < rows_.size(); ++k)
                eachIndex(std::max(width_ - (1 << k) + 1, 0),
                          [half = 1 << (k - 1), in = rows_[k - 1].data(), out = rows_[k].data()](int i)
                              SIMD_INLINE { out[i] = Extreme::of(in[i], in[i + half]); });
        }
        /// out[i] and the extreme of `length` pixels from i + first onwards.
        void add(int first, int length, float* out, int n) const {
            int k = std::bit_width(static_cast<unsigned>(length)) - 1;
            const float* low = rows_[k].data() + first;
            eachIndex(n, [=, high = low + length - (1 << k)](int i)
                             SIMD_INLINE { out[i] = Extreme::of(out[i], Extreme::of(low[i], high[i])); });
        }

      private:
        int width_;
        std::vector<std::vector<float>> rows_;
    };

    Shape shape_;
    int reachX_, reachY_;
};

/// The light of the neighbourhood spreads beyond the edge of the image.
Image largest(const Image& image, const Shape& shape) {
    if (!image || image->extent().isEmpty() || (shape.size() == 1 && shape[0] == 0)) return image;
    Rect extent = image->extent().integral().grown(shape[0], static_cast<double>(shape.size()) - 1);
    return std::make_shared<ExtremeNode<Larger>>(image, extent, shape);
}
/// Near the edge the neighbourhood is transparent.
Image smallest(const Image& image, const Shape& shape) {
    if (!image || image->extent().isEmpty() || (shape.size() == 1 && shape[0] == 0)) return image;
    Rect extent = image->extent().integral().grown(-shape[0], 1 - static_cast<double>(shape.size()));
    if (extent.isEmpty()) return empty();
    return std::make_shared<ExtremeNode<Smaller>>(image, extent, shape);
}

/// Of each premultiplied component and alpha, in the disc with that radius.
template <Image (*extreme)(const Image&, const Shape&)>
Image inDisc(const Inputs& in) {
    return extreme(in.image("inputImage"), disc(in.number("inputRadius", 0, 500)));
}

/// In a rectangle whose sides are rounded to odd numbers, as Core Image's documentation has it.
template <Image (*extreme)(const Image&, const Shape&)>
Image inRectangle(const Inputs& in) {
    auto reach = [&](const char* key) { return static_cast<int>(in.number(key, 1, 1000) / 2); };
    return extreme(in.image("inputImage"), rectangle(reach("inputWidth"), reach("inputHeight")));
}

/// The largest minus the smallest colours, over the alpha of the largest. (Core Image documents the
/// difference; that flat places are black and not clear is our own reading: no picture is known.)
Image gradient(const Inputs& in) {
    Image image = in.image("inputImage");
    if (!image) return nullptr;
    Shape shape = disc(in.number("inputRadius", 0, 500));
    Image high = largest(image, shape), low = smallest(image, shape);
    return eachPixel("morphology gradient", high->extent(), {high, low}, [](Pixel p, Pixel q) SIMD_INLINE {
        return eachColor(p, q, [](float x, float y) SIMD_INLINE { return x - y; });
    });
}

FilterInfo info(const char* name, const char* displayName, const char* description, Source source,
                const char* since, std::vector<InputInfo> inputs, Image (*build)(const Inputs&)) {
    return {name,   displayName, description, source, since, categories("Blur Video StillImage BuiltIn"),
            inputs, build};
}
std::vector<InputInfo> radiusInputs(const NumberFacts& facts) {
    return {imageInput(), numberInput("inputRadius", "Radius", "Distance", facts)};
}
std::vector<InputInfo> sideInputs() {
    constexpr NumberFacts side{.value = 5, .identity = 1, .min = 1, .sliderMin = 1, .sliderMax = 49};
    return {imageInput(), numberInput("inputWidth", "Width", "Integer", side),
            numberInput("inputHeight", "Height", "Integer", side)};
}
constexpr NumberFacts radius{.value = 0, .identity = 0, .sliderMin = 0, .sliderMax = 50};

const Registrar filters[] = {
    Registrar(info("CIMorphologyMaximum", "Morphology Maximum", "Lightens a picture by round spots.",
                   fitted("the largest of each component in a disc", 0), "10.13", radiusInputs(radius),
                   inDisc<largest>)),
    Registrar(info("CIMorphologyMinimum", "Morphology Minimum", "Darkens a picture by round spots.",
                   publicDefinition(
                       "the smallest of each component in a disc, as CIMorphologyMaximum takes the largest"),
                   "10.13", radiusInputs(radius), inDisc<smallest>)),
    Registrar(info(
        "CIMorphologyGradient", "Morphology Gradient",
        "Shows the edges of a picture by how much colours differ nearby.",
        ourOwn(
            "Core Image documents the difference of the extremes; that flat places are black is our reading"),
        "10.13", radiusInputs({.value = 5, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 50}),
        gradient)),
    Registrar(info("CIMorphologyRectangleMaximum", "Morphology Rectangle Maximum",
                   "Lightens a picture by rectangular spots.",
                   publicDefinition("Core Image's documentation: the largest in a rectangle with odd sides"),
                   "10.15", sideInputs(), inRectangle<largest>)),
    Registrar(info("CIMorphologyRectangleMinimum", "Morphology Rectangle Minimum",
                   "Darkens a picture by rectangular spots.",
                   publicDefinition("Core Image's documentation: the smallest in a rectangle with odd sides"),
                   "10.15", sideInputs(), inRectangle<smallest>)),
};

} // namespace

} // namespace engine
