// Reading between pixels.
#include "resample.h"

#include "plan.h"

#include <color/vecmath.h>

#include <cmath>
#include <new>

namespace engine {

std::pair<IntRect, IntRect> halves(const IntRect& r) {
    IntRect first = r, second = r;
    if (r.width() >= r.height())
        first.x1 = second.x0 = r.x0 + r.width() / 2;
    else
        first.y1 = second.y0 = r.y0 + r.height() / 2;
    return {first, second};
}

double mostKeptOf(const Node& input) { return readsAround(input) ? mostKept : mostCached; }

int bandHeight(const Node& input, const IntRect& area) { return readsAround(input) ? area.height() : 128; }

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

/// The components of a pixel, or one component of four pixels.
using Four [[gnu::vector_size(16)]] = float;

SIMD_INLINE inline Four load(const float* p) {
    Four v;
    __builtin_memcpy(&v, p, sizeof v);
    return v;
}
SIMD_INLINE inline void store(float* p, Four v) { __builtin_memcpy(p, &v, sizeof v); }

/// Makes four pixels of four planes, and the other way round.
SIMD_INLINE inline void transpose(Four& a, Four& b, Four& c, Four& d) {
    Four ab = __builtin_shufflevector(a, b, 0, 4, 1, 5), cd = __builtin_shufflevector(c, d, 0, 4, 1, 5);
    Four abHigh = __builtin_shufflevector(a, b, 2, 6, 3, 7),
         cdHigh = __builtin_shufflevector(c, d, 2, 6, 3, 7);
    a = __builtin_shufflevector(ab, cd, 0, 1, 4, 5);
    b = __builtin_shufflevector(ab, cd, 2, 3, 6, 7);
    c = __builtin_shufflevector(abHigh, cdHigh, 0, 1, 4, 5);
    d = __builtin_shufflevector(abHigh, cdHigh, 2, 3, 6, 7);
}

} // namespace

/// As for Pixels, an odd number of cache lines.
Texels::Texels(const IntRect& a) : area(a), stride_(((std::max(a.width(), 0) + 3) / 4 | 1) * 4) {
    double floats = 4.0 * stride_ * std::max(a.height(), 0);
    if (floats > (1 << 28)) throw std::bad_alloc();
    data_ = newFloats(static_cast<std::size_t>(floats));
}

Texels::Texels(Evaluator& from, const IntRect& a) : Texels(a) {
    SpanBuffer buffer;
    for (int y = area.y0; y < area.y1; ++y)
        for (int x = area.x0; x < area.x1; x += maxSpan) {
            int n = std::min(maxSpan, area.x1 - x);
            from.row(x, y, n, buffer.span());
            set(x, y, n, buffer.span());
        }
}

void Texels::set(int x, int y, int n, const Span& from) {
    float* out = data_.get() + static_cast<std::ptrdiff_t>(rowStep()) * (y - area.y0) + 4 * (x - area.x0);
    const float *r = from.plane[0], *g = from.plane[1], *b = from.plane[2], *a = from.plane[3];
    int i = 0;
    for (; i + 4 <= n; i += 4) {
        Four p = load(r + i), q = load(g + i), s = load(b + i), t = load(a + i);
        transpose(p, q, s, t);
        store(out + 4 * i, p);
        store(out + 4 * i + 4, q);
        store(out + 4 * i + 8, s);
        store(out + 4 * i + 12, t);
    }
    for (; i < n; ++i) store(out + 4 * i, Four{r[i], g[i], b[i], a[i]});
}

Readings::Readings(const Texels& from) : from_(from) {}

void Readings::locate(int first, int x, int y, int step, const float* u, const float* v, int n) {
    const IntRect& area = from_.area;
    // The last pixel is read from the one before it, if there is one.
    float mostX = static_cast<float>(std::max(area.width() - 2, 0)),
          mostY = static_cast<float>(std::max(area.height() - 2, 0));
    simd::run([=, offsetX = static_cast<float>(x - area.x0), offsetY = static_cast<float>(y - area.y0),
               stepX = static_cast<float>(step), rowStep = from_.rowStep(), fu = u_ + first, fv = v_ + first,
               index = index_ + first]() SIMD_INLINE {
        SIMD_LOOP
        for (int i = 0; i < n; ++i) {
            Split across = split(u[i], offsetX + static_cast<float>(i) * stepX, mostX),
                  along = split(v[i], offsetY, mostY);
            fu[i] = across.rest;
            fv[i] = along.rest;
            index[i] = 4 * static_cast<int>(across.whole) + static_cast<int>(along.whole) * rowStep;
        }
    });
}

void Readings::read(int n, const Span& out) const {
    int right = from_.area.width() > 1 ? 4 : 0, up = from_.area.height() > 1 ? from_.rowStep() : 0;
    simd::run([=, fu = &u_[0], fv = &v_[0], index = &index_[0], texels = from_.data()]() SIMD_INLINE {
        auto reading = [=](int i) SIMD_INLINE {
            const float* p = texels + index[i];
            Four u = Four{} + fu[i], v = Four{} + fv[i];
            Four a = load(p), b = load(p + right), c = load(p + up), d = load(p + up + right);
            Four low = a + u * (b - a), high = c + u * (d - c);
            return low + v * (high - low);
        };
        int i = 0;
        for (; i + 4 <= n; i += 4) {
            Four p = reading(i), q = reading(i + 1), s = reading(i + 2), t = reading(i + 3);
            transpose(p, q, s, t);
            store(out.plane[0] + i, p);
            store(out.plane[1] + i, q);
            store(out.plane[2] + i, s);
            store(out.plane[3] + i, t);
        }
        for (; i < n; ++i) {
            Four p = reading(i);
            for (int c = 0; c < 4; ++c) out.plane[c][i] = p[c];
        }
    });
}

} // namespace engine
