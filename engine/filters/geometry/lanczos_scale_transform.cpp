// CILanczosScaleTransform: scales a picture and keeps it sharp.
#include "filter.h"
#include "kernel.h"
#include "resample.h"
#include "sums.h"

#include <cmath>
#include <deque>

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

/// in[0] is the source's pixel x0.
void scaleAcross(const float* in, int x0, const std::vector<Share>& shares, float* out) {
    using Four [[gnu::vector_size(16)]] = float;
    simd::run([=, &shares]() SIMD_INLINE {
        float* to = out;
        for (const Share& share : shares) {
            const float *from = in + (share.first - x0), *w = share.weights.data();
            int n = static_cast<int>(share.weights.size()), i = 0;
            Four sums{};
            for (; i + 4 <= n; i += 4) {
                Four a, b;
                __builtin_memcpy(&a, from + i, sizeof a);
                __builtin_memcpy(&b, w + i, sizeof b);
                sums += a * b;
            }
            float sum = (sums[0] + sums[1]) + (sums[2] + sums[3]);
            for (; i < n; ++i) sum += w[i] * from[i];
            *to++ = sum;
        }
    });
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
    /// Rows of the source are added to all rows of the result that they are part of; when such a sum is
    /// complete, it is scaled across.
    std::shared_ptr<Evaluator> prepare(const IntRect& area, RenderContext& context) const override {
        Pixels out(area);
        const Rect& e = extent();
        auto across = shares(area.x0, area.x1, sx_, e.x0, e.x1);
        auto along = shares(area.y0, area.y1, sy_, e.y0, e.y1);
        auto end = [](const Share& share) { return share.first + static_cast<int>(share.weights.size()); };
        IntRect read{across.front().first, along.front().first, end(across.back()), end(along.back())};
        // Four rows at a time, always the same four.
        constexpr int group = 4;
        Pixels lines({read.x0, 0, read.x1, group});
        std::deque<Pixels> sums; // of the rows from `first` on
        int first = 0;
        auto add = [&](int y, int last) {
            int begun = first;
            for (; begun < area.height() && along[begun].first <= last; ++begun)
                if (begun - first == static_cast<int>(sums.size())) {
                    sums.emplace_back(IntRect{read.x0, 0, read.x1, 1});
                    sums.back().clear();
                }
            // In pieces that fit the first cache.
            constexpr int piece = 1024;
            for (int at = 0, floats = static_cast<int>(lines.rowStep()); at < floats; at += piece) {
                std::array<const float*, group> rows;
                for (int k = 0; k < group; ++k) rows[k] = lines.row(k).plane[0] + at;
                for (int j = first; j < begun; ++j) {
                    int from = std::max(y, along[j].first), to = std::min(last + 1, end(along[j]));
                    if (from < to)
                        addRows(&rows[from & (group - 1)], &along[j].weights[from - along[j].first],
                                to - from, sums[j - first].data.get() + at, std::min(piece, floats - at));
                }
            }
            for (; first < area.height() && end(along[first]) <= last + 1; ++first) {
                for (int c = 0; c < 4; ++c)
                    scaleAcross(sums.front().row(0).plane[c], read.x0, across,
                                out.row(area.y0 + first).plane[c]);
                sums.pop_front();
            }
        };
        int begin = read.y0;
        context.stream(inputs()[0], read, [&](int y, const Span& in) {
            lines.row(y & (group - 1)).copy(in, read.width());
            if ((y & (group - 1)) == group - 1 || y + 1 == read.y1) add(begin, y), begin = y + 1;
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
