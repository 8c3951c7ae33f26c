// CIRedEyeCorrections: pupils without the red of a flash.
#include "filter.h"
#include "kernel.h"

#include <cmath>

namespace engine {

namespace {

/// Takes the red out of a pupil: what is much redder than skin, in a circle that fades out between 0.8 and
/// 1.2 of the radius. In linear light skin has up to three times as much red as green or blue, a flash-lit
/// pupil many times.
SpanFunction correctionStep(Point centre, double radius) {
    return [=](const Span& s, int x, int y, int n) {
        double dy = (y + 0.5 - centre.y) / radius;
        if (std::abs(dy) >= 1.2) return;
        int first = std::max(0, static_cast<int>(std::max(std::floor(centre.x - 1.2 * radius) - x, 0.0)));
        int last = static_cast<int>(std::clamp(std::ceil(centre.x + 1.2 * radius) - x, 0.0, double(n)));
        if (first >= last) return;
        eachIndex(last - first, [=, row = ScaledFrom{centre, 1 / radius}.row(x, y)](int k) SIMD_INLINE {
            int i = first + k;
            Position from = row.at(i);
            Pixel q = load(s, i);
            float inside = smoothstep((1.2f - simd::sqrt(from.x * from.x + from.y * from.y)) * 2.5f);
            float other = simd::max(simd::max(q.g, q.b), 1e-6f);
            float red = smoothstep((q.r / other - 3) * (1 / 3.f));
            s.plane[0][i] = simd::mix(q.r, 0.5f * (q.g + q.b), inside * red);
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
     ourOwn("red that is far from that of skin is taken out of a circle"),
     "10.8",
     {},
     {imageInput(), vectorInput("inputCorrectionInfo", "Correction Info", "", {}, Numbers{})},
     build}};

} // namespace

} // namespace engine
