// CIShadedMaterial: a height field that looks like a material, as a picture of a sphere of it shows.
#include "filter.h"
#include "kernel.h"
#include "resample.h"

#include <cmath>

namespace engine {

namespace {

/// The largest side of the sphere's picture that is looked at.
constexpr double largestSphere = 1024;

class ShadedNode : public Node {
  public:
    ShadedNode(const Image& heights, const Image& sphere, double scale)
        : Node(heights->extent(), {clampToEdge(heights), sphere, heights}),
          slope_(static_cast<float>(scale / 2)) {}

    std::string name() const override { return "shaded material"; }
    bool materialises() const override { return true; }
    Rect regionOfInterest(std::size_t index, const Rect& area) const override {
        return index == 0 ? area.grown(1, 1) : index == 1 ? inputs()[1]->extent() : area;
    }
    std::shared_ptr<Evaluator> prepare(const IntRect& area, RenderContext& context) const override {
        Pixels field({area.x0 - 1, area.y0 - 1, area.x1 + 1, area.y1 + 1});
        fill(*context.prepare(inputs()[0], field.area), field);
        IntRect all = toInt(inputs()[1]->extent());
        Texels sphere(*context.prepare(inputs()[1], all), all);
        auto heights = context.prepare(inputs()[2], area);
        Pixels out(area);
        for (int y = area.y0; y < area.y1; ++y)
            for (int x = area.x0; x < area.x1; x += maxSpan)
                row(x, y, std::min(maxSpan, area.x1 - x), field, sphere, *heights, out.at(x, y));
        return std::make_shared<Computed>(std::move(out));
    }

  private:
    void row(int x, int y, int n, const Pixels& field, const Texels& sphere, Evaluator& heights,
             const Span& out) const {
        alignas(32) float u[maxSpan], v[maxSpan];
        SpanBuffer own;
        heights.row(x, y, n, own.span());
        float halfX = 0.5f * static_cast<float>(sphere.area.width()),
              halfY = 0.5f * static_cast<float>(sphere.area.height());
        eachIndex(n, [=, u = u, v = v, low = field.at(x, y - 1), here = field.at(x, y),
                      high = field.at(x, y + 1), slope = slope_](int i) SIMD_INLINE {
            float across = slope * (luminance(load(here, i - 1)) - luminance(load(here, i + 1)));
            float up = slope * (luminance(load(low, i)) - luminance(load(high, i)));
            float length = simd::sqrt(1 + across * across + up * up);
            u[i] = halfX * (1 + across / length) - 0.5f;
            v[i] = halfY * (1 + up / length) - 0.5f;
        });
        readBilinear(sphere, sphere.area.x0, sphere.area.y0, u, v, n, out);
        eachPixel(
            n,
            [](Pixel p, Pixel height) SIMD_INLINE -> Pixel {
                return {p.r * height.a, p.g * height.a, p.b * height.a, p.a * height.a};
            },
            out, own.span());
    }

    float slope_;
};

/// Heights are the linear light of the field, `scale` pixels where it is white. A place shows the part of the
/// sphere's picture, which fills its extent, whose surface faces the same way; the alpha of the field stays.
/// (Core Image documents the inputs and that the shading image is one of a sphere; the formula is our own: no
/// picture is known.)
Image build(const Inputs& in) {
    Image heights = in.image("inputImage"), sphere = in.image("inputShadingImage");
    if (!heights || !sphere) return nullptr;
    Rect extent = sphere->extent().integral();
    if (heights->extent().isEmpty() || extent.isEmpty() || extent.isInfinite()) return empty();
    Affine toOrigin = Affine::translation(-extent.x0, -extent.y0)
                          .then(Affine::scale(std::min(1.0, largestSphere / extent.width()),
                                              std::min(1.0, largestSphere / extent.height())));
    sphere = transform(sphere, toOrigin);
    if (sphere->extent().isEmpty()) return empty();
    return std::make_shared<ShadedNode>(heights, sphere, in.number("inputScale", 0, 1e4));
}

const Registrar filter{{"CIShadedMaterial",
                        "Shaded Material",
                        "Gives a height field the look of a material, by a picture of a sphere of it.",
                        ourOwn("the slope looked up in the picture of a sphere"),
                        "10.4",
                        categories("Stylize Video StillImage BuiltIn"),
                        {imageInput(), imageInput("inputShadingImage", "Shading Image"),
                         numberInput("inputScale", "Scale", "Distance",
                                     {.value = 10, .min = 0, .sliderMin = 0.5, .sliderMax = 200})},
                        build}};

} // namespace

} // namespace engine
