// CIMaskedVariableBlur: a blur that is as wide as a mask is bright.
#include "filter.h"
#include "kernel.h"

#include <cmath>

namespace engine {

namespace {

/// The widths of a pyramid of blurs: level k has this standard deviation, level 0 is the image.
double deviation(int level) { return std::sqrt(0.61 * std::exp2(2 * level) - 0.16); }

/// Core Image rounds the image outwards to whole cells of its pyramid and adds three of them.
Rect pyramidExtent(const Rect& r, double radius) {
    double cell = std::exp2(std::ceil(std::log2(std::max(radius, 1.0))) + 1);
    Rect whole{cell * std::floor(r.x0 / cell), cell * std::floor(r.y0 / cell), cell * std::ceil(r.x1 / cell),
               cell * std::ceil(r.y1 / cell)};
    return whole.grown(3 * cell, 3 * cell);
}

/// The mask's linear light times the radius is how wide to blur: at 0.66 * 2^k pixels it shows level k of the
/// pyramid, and between levels it is eased from one to the next over the logarithm. Without a mask, and where
/// the mask is black or clear, the image stays.
Image build(const Inputs& in) {
    Image image = in.image("inputImage"), mask = in.image("inputMask"), out = image;
    double radius = in.number("inputRadius", 0, 1000), levels = radius / 0.66;
    if (!image || !mask || image->extent().isEmpty()) return image;
    for (int k = 0; levels > std::exp2(k); ++k)
        out = eachPixel("masked variable blur", pyramidExtent(image->extent(), radius),
                        {out, gaussian(image, deviation(k + 1)), mask},
                        [scale = static_cast<float>(levels),
                         below = static_cast<float>(k)](Pixel p, Pixel wider, Pixel m) SIMD_INLINE {
                            float level = simd::log2(simd::max(scale * luminance(m), 1e-3f));
                            return mix(p, wider, smoothstep(level - below));
                        });
    return out;
}

InputInfo maskInput() {
    InputInfo info = imageInput("inputMask", "Mask");
    info.type.clear();
    return info;
}

const Registrar filter{{"CIMaskedVariableBlur",
                        "Masked Variable Blur",
                        "Blurs a picture the more, the brighter a mask is.",
                        fitted("a pyramid of blurs, read at the level that the mask asks for", 0.17),
                        "10.10",
                        categories("Blur StillImage Video BuiltIn"),
                        {imageInput(), maskInput(),
                         numberInput("inputRadius", "Radius", "Scalar",
                                     {.value = 5, .identity = 0, .min = 0, .sliderMin = 0, .sliderMax = 10})},
                        build}};

} // namespace

} // namespace engine
