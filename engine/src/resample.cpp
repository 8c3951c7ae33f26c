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

namespace {

namespace simd = color::simd;

/// A coordinate as a whole number and what is left, for two neighbours that both exist.
struct Split {
    float whole, rest;
};

/// Takes the whole pixels out of `v` before they are counted from the edge of what is kept, so that the rest
/// does not depend on it. `most` is the last pixel that has a neighbour.
SIMD_INLINE Split split(float v, float offset, float most) {
    constexpr float far = 1 << 23; // beyond it floats are whole
    v = simd::clamp(v, -far, far);
    float whole = static_cast<float>(static_cast<int>(v));
    whole -= whole > v ? 1.0f : 0.0f;
    float rest = v - whole;
    whole += offset;
    rest = whole < 0 ? 0.0f : whole > most ? 1.0f : rest;
    return {simd::clamp(whole, 0, most), rest};
}

} // namespace

Readings::Readings(const Pixels& from) : from_(from) {}

void Readings::locate(int first, int x, int y, int step, const float* u, const float* v, int n) {
    const IntRect& area = from_.area;
    // The last pixel is read from the one before it, if there is one.
    float mostX = static_cast<float>(std::max(area.width() - 2, 0)),
          mostY = static_cast<float>(std::max(area.height() - 2, 0));
    simd::run([=, offsetX = static_cast<float>(x - area.x0), offsetY = static_cast<float>(y - area.y0),
               stepX = static_cast<float>(step), rowStep = static_cast<int>(from_.rowStep()), fu = u_ + first,
               fv = v_ + first, index = index_ + first]() SIMD_INLINE {
        SIMD_LOOP
        for (int i = 0; i < n; ++i) {
            Split across = split(u[i], offsetX + static_cast<float>(i) * stepX, mostX),
                  along = split(v[i], offsetY, mostY);
            fu[i] = across.rest;
            fv[i] = along.rest;
            index[i] = static_cast<int>(across.whole) + static_cast<int>(along.whole) * rowStep;
        }
    });
}

void Readings::read(int n, const Span& out) const {
    int right = from_.area.width() > 1 ? 1 : 0,
        up = from_.area.height() > 1 ? static_cast<int>(from_.rowStep()) : 0;
    for (int c = 0; c < 4; ++c)
        simd::run([=, fu = &u_[0], fv = &v_[0], index = &index_[0], o = out.plane[c],
                   p = from_.row(from_.area.y0).plane[c]]() SIMD_INLINE {
            SIMD_LOOP
            for (int i = 0; i < n; ++i) {
                int k = index[i];
                float low = simd::mix(p[k], p[k + right], fu[i]);
                float high = simd::mix(p[k + up], p[k + up + right], fu[i]);
                o[i] = simd::mix(low, high, fv[i]);
            }
        });
}

} // namespace engine
