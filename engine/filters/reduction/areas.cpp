// CIAreaAverage, CIAreaMaximum, CIAreaMinimum, CIAreaMaximumAlpha, CIAreaMinimumAlpha: an area in one pixel.
#include "family.h"

namespace engine {

namespace {

using Sums = std::array<double, 4>;

/// Takes in the pixels of an area one by one; `count` is that of all pixels, also those outside of the
/// picture, which are transparent.
struct Reduction {
    const char *name, *displayName, *description;
    Source source;
    void (*add)(Sums& sums, const Rgba& pixel, bool first);
    void (*finish)(Sums& sums, double count);
};

void nothing(Sums&, double) {}

template <class Better>
void extreme(Sums& sums, const Rgba& pixel, bool first) {
    for (int c = 0; c < 4; ++c)
        if (double v = static_cast<double>(pixel[c]); first || Better()(v, sums[c])) sums[c] = v;
}

template <class Better>
void extremeAlpha(Sums& sums, const Rgba& pixel, bool first) {
    if (first || Better()(static_cast<double>(pixel[3]), sums[3]))
        std::copy(pixel.begin(), pixel.end(), sums.begin());
}

constexpr Reduction reductions[] = {
    {"CIAreaAverage", "Area Average", "Makes one pixel with the mean of an area.",
     publicDefinition("the mean"),
     [](Sums& sums, const Rgba& pixel, bool) {
         for (int c = 0; c < 4; ++c) sums[c] += static_cast<double>(pixel[c]);
     },
     [](Sums& sums, double count) {
         for (double& v : sums) v /= count;
     }},
    {"CIAreaMaximum", "Area Maximum", "Makes one pixel with the largest components of an area.",
     publicDefinition("the largest components"), extreme<std::greater<>>, nothing},
    {"CIAreaMinimum", "Area Minimum", "Makes one pixel with the smallest components of an area.",
     publicDefinition("the smallest components"), extreme<std::less<>>, nothing},
    {"CIAreaMaximumAlpha", "Area Maximum Alpha", "Makes one pixel like the most opaque one of an area.",
     publicDefinition("the most opaque pixel"), extremeAlpha<std::greater<>>, nothing},
    {"CIAreaMinimumAlpha", "Area Minimum Alpha", "Makes one pixel like the least opaque one of an area.",
     publicDefinition("the least opaque pixel"), extremeAlpha<std::less<>>, nothing},
};

class OnePixel : public Evaluator {
  public:
    explicit OnePixel(const Sums& sums) : sums_(sums) {}
    void row(int, int, int n, const Span& out) override {
        for (int c = 0; c < 4; ++c) std::fill_n(out.plane[c], n, static_cast<float>(sums_[c]));
    }

  private:
    Sums sums_;
};

/// Pixel (0, 0), from all pixels whose centres lie in the area.
class ReductionNode : public Node {
  public:
    ReductionNode(const Reduction& how, const Image& image, const IntRect& area)
        : Node({0, 0, 1, 1}, {image}), how_(how), area_(area) {}

    std::string name() const override { return "area"; }
    bool materialises() const override { return true; }
    Rect regionOfInterest(std::size_t, const Rect&) const override { return toRect(area_); }
    std::shared_ptr<Evaluator> prepare(const IntRect&, RenderContext& context) const override {
        Sums sums{};
        double seen = 0;
        context.stream(inputs()[0], area_, [&](int, const Span& row) {
            for (int i = 0; i < area_.width(); ++i, ++seen)
                how_.add(sums, {row.plane[0][i], row.plane[1][i], row.plane[2][i], row.plane[3][i]},
                         seen == 0);
        });
        // Transparent rows are skipped by the stream, but they count.
        if (seen < area_.count()) how_.add(sums, {}, seen == 0);
        how_.finish(sums, area_.count());
        return std::make_shared<OnePixel>(sums);
    }

  private:
    const Reduction& how_;
    IntRect area_;
};

Image reduced(const Reduction& how, const Inputs& in) {
    Image image = in.image("inputImage");
    if (!image) return nullptr;
    IntRect area = summedArea(image, in.rect("inputExtent"));
    if (area.isEmpty()) return empty();
    return std::make_shared<ReductionNode>(how, image, area);
}

const auto registrars = registerFamily<reductions, reduced>([](const Reduction& how) -> FilterInfo {
    return {how.name,
            how.displayName,
            how.description,
            how.source,
            "10.5",
            categories("Reduction Video StillImage BuiltIn"),
            {imageInput(), vectorInput("inputExtent", "Extent", "Rectangle", {0, 0, 640, 80})},
            nullptr};
});

} // namespace

} // namespace engine
