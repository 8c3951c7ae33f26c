// Reading between pixels.
#include "resample.h"

#include <color/vecmath.h>

#include <cmath>

namespace engine {

std::pair<IntRect, IntRect> halves(const IntRect& r) {
    IntRect first = r, second = r;
    if (r.width() >= r.height())
        first.x1 = second.x0 = r.x0 + r.width() / 2;
    else
        first.y1 = second.y0 = r.y0 + r.height() / 2;
    return {first, second};
}

bool isWholeMove(const Affine& m) {
    auto whole = [](double v) { return std::abs(v) < (1 << 28) && v == std::round(v); };
    return m.a == 1 && m.b == 0 && m.c == 0 && m.d == 1 && whole(m.tx) && whole(m.ty);
}

Rect centresOf(const IntRect& area, const Affine& m) {
    Point first = m.apply(Point{area.x0 + 0.5, area.y0 + 0.5});
    Point across{m.a * (area.width() - 1), m.b * (area.width() - 1)};
    Point along{m.c * (area.height() - 1), m.d * (area.height() - 1)};
    return {first.x + std::min(across.x, 0.0) + std::min(along.x, 0.0),
            first.y + std::min(across.y, 0.0) + std::min(along.y, 0.0),
            first.x + std::max(across.x, 0.0) + std::max(along.x, 0.0),
            first.y + std::max(across.y, 0.0) + std::max(along.y, 0.0)};
}

void readBilinear(const Pixels& from, const float* u, const float* v, int n, const Span& out) {
    namespace simd = color::simd;
    alignas(32) float fu[maxSpan], fv[maxSpan];
    alignas(32) int index[maxSpan];
    int width = from.area.width(), height = from.area.height(), step = static_cast<int>(from.rowStep());
    // The last pixel is read from the one before it, if there is one.
    int right = width > 1 ? 1 : 0, up = height > 1 ? step : 0;
    float lastU = static_cast<float>(width - 1), lastV = static_cast<float>(height - 1);
    float mostX = static_cast<float>(std::max(width - 2, 0)),
          mostY = static_cast<float>(std::max(height - 2, 0));
    simd::run([=, fu = fu, fv = fv, index = index]() SIMD_INLINE {
        SIMD_LOOP
        for (int i = 0; i < n; ++i) {
            float x = simd::clamp(u[i], 0, lastU), y = simd::clamp(v[i], 0, lastV);
            float wholeX = static_cast<float>(static_cast<int>(simd::min(x, mostX)));
            float wholeY = static_cast<float>(static_cast<int>(simd::min(y, mostY)));
            fu[i] = x - wholeX;
            fv[i] = y - wholeY;
            index[i] = static_cast<int>(wholeX) + static_cast<int>(wholeY) * step;
        }
    });
    for (int c = 0; c < 4; ++c) {
        const float* p = from.row(from.area.y0).plane[c];
        float* o = out.plane[c];
        simd::run([=, fu = fu, fv = fv, index = index]() SIMD_INLINE {
            SIMD_LOOP
            for (int i = 0; i < n; ++i) {
                int k = index[i];
                float low = simd::mix(p[k], p[k + right], fu[i]);
                float high = simd::mix(p[k + up], p[k + up + right], fu[i]);
                o[i] = simd::mix(low, high, fv[i]);
            }
        });
    }
}

} // namespace engine
