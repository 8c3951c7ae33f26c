// Colour matching through linear light.
#include "ColorMatch.h"

namespace cg {

ColorMatch::ColorMatch(const ColorSpace* from, const ColorSpace* to, bool extended) : extended_(extended) {
    if (!from || !to || from->space()->sameAs(*to->space())) return;
    from_ = from->space().get();
    to_ = to->space().get();
}

void ColorMatch::apply(const Planes& p, std::size_t n) const {
    if (isNothing()) return;
    if (from_->model() == color::Model::lab)
        for (int k = 0; k < 3; ++k) {
            auto [low, high] = from_->range(k);
            float* plane = p[static_cast<std::size_t>(k)];
            for (std::size_t i = 0; i < n; ++i) plane[i] = static_cast<float>(low + plane[i] * (high - low));
        }
    float* const rgb[3] = {p[0], p[1], p[2]};
    from_->converter().decode(p.data(), rgb, n);
    if (extended_)
        to_->converter().encode(rgb, p.data(), n);
    else
        to_->converter().encodeClipped(rgb, p.data(), n);
}

void premultiply(const Planes& planes, int colors, std::size_t n) {
    const float* alpha = planes[alphaPlane];
    for (std::size_t k = 0; k < static_cast<std::size_t>(colors); ++k)
        for (std::size_t i = 0; i < n; ++i) planes[k][i] *= alpha[i];
}

void unpremultiply(const Planes& planes, int colors, std::size_t n) {
    const float* alpha = planes[alphaPlane];
    for (std::size_t k = 0; k < static_cast<std::size_t>(colors); ++k)
        for (std::size_t i = 0; i < n; ++i) planes[k][i] = alpha[i] > 0 ? planes[k][i] / alpha[i] : 0;
}

} // namespace cg
