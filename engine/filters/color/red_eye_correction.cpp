#include "registry.h"

#include <color/vecmath.h>

#include <cmath>

namespace engine {

namespace {

SIMD_INLINE inline float smooth(float t) {
    t = color::simd::unit(t);
    return t * t * (3 - 2 * t);
}

/// Takes the red out of a pupil: what is much redder than skin, in a circle that fades out between 0.8
/// and 1.2 of the radius. In linear light skin has up to three times as much red as green or blue, a
/// flash-lit pupil many times.
SpanFunction correctionStep(Point centre, double radius) {
    return [=](const Span& s, int x, int y, int n) {
        double dy = (y + 0.5 - centre.y) / radius;
        if (std::abs(dy) >= 1.2) return;
        int first = std::max(0, static_cast<int>(std::max(std::floor(centre.x - 1.2 * radius) - x, 0.0)));
        int last = static_cast<int>(std::clamp(std::ceil(centre.x + 1.2 * radius) - x, 0.0, double(n)));
        float x0 = static_cast<float>((x + 0.5 - centre.x) / radius), step = static_cast<float>(1 / radius);
        color::simd::run([=, r = s.plane[0], g = s.plane[1], b = s.plane[2],
                          y2 = static_cast<float>(dy * dy)]() SIMD_INLINE {
            namespace simd = color::simd;
            SIMD_LOOP
            for (int i = first; i < last; ++i) {
                float dx = x0 + static_cast<float>(i) * step;
                float inside = smooth((1.2f - simd::sqrt(dx * dx + y2)) * 2.5f);
                float other = simd::max(simd::max(g[i], b[i]), 1e-6f);
                float red = smooth((r[i] / other - 3) * (1 / 3.f));
                r[i] = simd::mix(r[i], 0.5f * (g[i] + b[i]), inside * red);
            }
        });
    };
}

/// As many pupils as there are triples of x, y and radius, up to a thousand.
Image build(const Inputs& in) {
    Image image = in.image("inputImage");
    Numbers pupils = in.vector("inputCorrectionInfo");
    for (std::size_t i = 0; i + 2 < std::min<std::size_t>(pupils.size(), 3000); i += 3)
        if (double radius = pupils[i + 2]; radius > 0 && radius < 1e6)
            image = pointStep(image, "red eye correction",
                              [step = correctionStep({pupils[i], pupils[i + 1]}, radius)](
                                  const RenderContext&) { return step; });
    return image;
}

const Registrar filter{
    {"CIRedEyeCorrections",
     "Red Eye Corrections",
     "Takes the red of a flash out of pupils, which are given as x, y and radius of each.",
     "10.8",
     {},
     {imageInput(), vectorInput("inputCorrectionInfo", "Correction Info", "", {}, Numbers{})},
     build}};

} // namespace

} // namespace engine
