// CILanczosScaleTransform: scales a picture and keeps it sharp.
#include "filter.h"
#include "kernel.h"
#include "resample.h"

#include <cmath>

namespace engine {

namespace {

/// The product of sinc(x) and sinc(x / 3), 0 beyond 3 (C. E. Duchon, "Lanczos filtering in one and two
/// dimensions", 1979).
double lanczos(double x) {
    if (std::abs(x) < 1e-9) return 1;
    if (std::abs(x) >= 3) return 0;
    return 3 * std::sin(pi * x) * std::sin(pi * x / 3) / (pi * pi * x * x);
}

/// What one pixel of the result takes from a row or column of the source.
struct Share {
    int first;
    std::vector<float> weights;
};

/// For the pixels from begin to end along an axis. When the picture is made smaller, the kernel widens to
/// match, so that all pixels of the source count. A pixel at the edge of low..high, the scaled extent, fades
/// by the part of it that is outside.
std::vector<Share> shares(int begin, int end, double scale, double low, double high) {
    double wide = std::max(1 / scale, 1.0);
    std::vector<Share> out;
    for (int x = begin; x < end; ++x) {
        double middle = (x + 0.5) / scale - 0.5, sum = 0;
        int first = static_cast<int>(std::floor(middle - 3 * wide)) + 1;
        int last = static_cast<int>(std::ceil(middle + 3 * wide)) - 1;
        std::vector<double> weights;
        for (int j = first; j <= last; ++j) {
            weights.push_back(lanczos((j - middle) / wide));
            sum += weights.back();
        }
        double inside = std::max(std::min(x + 1.0, high) - std::max(1.0 * x, low), 0.0);
        Share share{first, {}};
        for (double w : weights) share.weights.push_back(static_cast<float>(w / sum * inside));
        out.push_back(std::move(share));
    }
    return out;
}

class LanczosNode : public Node {
  public:
    LanczosNode(const Image& image, double sx, double sy)
        : Node(Affine::scale(sx, sy).apply(image->extent()), {clampToEdge(image)}), sx_(sx), sy_(sy) {}

    std::string name() const override { return "Lanczos"; }
    bool materialises() const override { return true; }
    Rect regionOfInterest(std::size_t, const Rect& area) const override {
        return Affine::scale(1 / sx_, 1 / sy_)
            .apply(area)
            .grown(3 * std::max(1 / sx_, 1.0), 3 * std::max(1 / sy_, 1.0));
    }
    /// Each row of the source is scaled across, then added to all rows of the result that it is part of.
    std::shared_ptr<Evaluator> prepare(const IntRect& area, RenderContext& context) const override {
        Pixels out(area), line({area.x0, 0, area.x1, 1});
        out.clear();
        const Rect& e = extent();
        auto across = shares(area.x0, area.x1, sx_, e.x0, e.x1);
        auto along = shares(area.y0, area.y1, sy_, e.y0, e.y1);
        auto end = [](const Share& share) { return share.first + static_cast<int>(share.weights.size()); };
        IntRect read{across.front().first, along.front().first, end(across.back()), end(along.back())};
        int first = 0; // of the rows that are not complete
        context.stream(inputs()[0], read, [&](int y, const Span& in) {
            for (int c = 0; c < 4; ++c) {
                float* to = line.row(0).plane[c];
                for (const Share& share : across) {
                    const float* from = in.plane[c] + (share.first - read.x0);
                    float sum = 0;
                    for (float w : share.weights) sum += w * *from++;
                    *to++ = sum;
                }
            }
            while (first < area.height() && end(along[first]) <= y) ++first;
            for (int j = first; j < area.height() && along[j].first <= y; ++j) {
                if (end(along[j]) <= y) continue;
                eachIndex(static_cast<int>(out.rowStep()),
                          [w = along[j].weights[y - along[j].first], from = line.data.get(),
                           to = out.row(area.y0 + j).plane[0]](int i) SIMD_INLINE { to[i] += w * from[i]; });
            }
        });
        return std::make_shared<Computed>(std::move(out));
    }

  private:
    double sx_, sy_;
};

/// Scaled about the origin, the width by the aspect ratio as well. (Core Image's picture: mean residual 0.39
/// of 255.)
Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    double sy = in.number("inputScale", 0, 1e3), sx = sy * in.number("inputAspectRatio", 0, 1e3);
    if (!image || (sx == 1 && sy == 1) || image->extent().isEmpty()) return image;
    // At such a size nothing but the mean can be seen.
    if (std::min(sx, sy) < 0.002) return transform(image, Affine::scale(sx, sy));
    return std::make_shared<LanczosNode>(image, sx, sy);
}

const Registrar filter{
    {"CILanczosScaleTransform",
     "Lanczos Scale Transform",
     "Scales a picture and keeps it as sharp as can be.",
     fitted("sinc(x) sinc(x / 3), after Duchon, 1979", 0.39),
     "10.4",
     categories("GeometryAdjustment Video StillImage BuiltIn"),
     {imageInput(),
      numberInput("inputScale", "Scale", "Scalar",
                  {.value = 1, .identity = 1, .min = 0, .sliderMin = 0.05, .sliderMax = 1.5}),
      numberInput("inputAspectRatio", "Aspect Ratio", "Scalar",
                  {.value = 1, .identity = 1, .min = 0, .sliderMin = 0.5, .sliderMax = 2})},
     build}};

} // namespace

} // namespace engine
