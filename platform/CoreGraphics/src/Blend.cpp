// The blend modes, by the formulas of PDF 1.7 (Porter-Duff, separable and non-separable).
#include "Blend.h"

#include <algorithm>
#include <cmath>

namespace cg {

namespace {

/// The Porter-Duff modes: result = source factor * source + dest factor * destination.
struct Factors {
    float source, dest;
};

Factors factors(CGBlendMode mode, float sa, float da) {
    switch (mode) {
    case kCGBlendModeClear:
        return {0, 0};
    case kCGBlendModeCopy:
        return {1, 0};
    case kCGBlendModeSourceIn:
        return {da, 0};
    case kCGBlendModeSourceOut:
        return {1 - da, 0};
    case kCGBlendModeSourceAtop:
        return {da, 1 - sa};
    case kCGBlendModeDestinationOver:
        return {1 - da, 1};
    case kCGBlendModeDestinationIn:
        return {0, sa};
    case kCGBlendModeDestinationOut:
        return {0, 1 - sa};
    case kCGBlendModeDestinationAtop:
        return {1 - da, sa};
    case kCGBlendModeXOR:
        return {1 - da, 1 - sa};
    case kCGBlendModePlusLighter:
        return {1, 1};
    default:
        return {1, 1 - sa};
    }
}

/// Mixes one component of the backdrop b and the source s, both straight.
float separable(CGBlendMode mode, float b, float s) {
    switch (mode) {
    case kCGBlendModeMultiply:
        return b * s;
    case kCGBlendModeScreen:
        return b + s - b * s;
    case kCGBlendModeOverlay:
        return separable(kCGBlendModeHardLight, s, b);
    case kCGBlendModeDarken:
        return std::min(b, s);
    case kCGBlendModeLighten:
        return std::max(b, s);
    case kCGBlendModeColorDodge:
        return b <= 0 ? 0 : s >= 1 ? 1 : std::min(1.f, b / (1 - s));
    case kCGBlendModeColorBurn:
        return b >= 1 ? 1 : s <= 0 ? 0 : 1 - std::min(1.f, (1 - b) / s);
    case kCGBlendModeSoftLight: {
        float d = b <= 0.25f ? ((16 * b - 12) * b + 4) * b : std::sqrt(b);
        return s <= 0.5f ? b - (1 - 2 * s) * b * (1 - b) : b + (2 * s - 1) * (d - b);
    }
    case kCGBlendModeHardLight:
        return s <= 0.5f ? b * 2 * s : b + (2 * s - 1) - b * (2 * s - 1);
    case kCGBlendModeDifference:
        return std::fabs(b - s);
    case kCGBlendModeExclusion:
        return b + s - 2 * b * s;
    default:
        return s;
    }
}

struct RGB {
    float r, g, b;
};

float luminosity(RGB c) { return 0.3f * c.r + 0.59f * c.g + 0.11f * c.b; }

float saturation(RGB c) { return std::max({c.r, c.g, c.b}) - std::min({c.r, c.g, c.b}); }

/// The colour with another luminosity, pulled back into 0..1 towards gray.
RGB withLuminosity(RGB c, float target) {
    float shift = target - luminosity(c);
    c = {c.r + shift, c.g + shift, c.b + shift};
    float low = std::min({c.r, c.g, c.b}), high = std::max({c.r, c.g, c.b});
    float scale = 1;
    if (low < 0 && target > low) scale = std::min(scale, target / (target - low));
    if (high > 1 && high > target) scale = std::min(scale, (1 - target) / (high - target));
    return {target + (c.r - target) * scale, target + (c.g - target) * scale,
            target + (c.b - target) * scale};
}

RGB withSaturation(RGB c, float target) {
    float low = std::min({c.r, c.g, c.b}), range = saturation(c);
    if (range <= 0) return {0, 0, 0};
    float scale = target / range;
    return {(c.r - low) * scale, (c.g - low) * scale, (c.b - low) * scale};
}

RGB nonSeparable(CGBlendMode mode, RGB b, RGB s) {
    switch (mode) {
    case kCGBlendModeHue:
        return withLuminosity(withSaturation(s, saturation(b)), luminosity(b));
    case kCGBlendModeSaturation:
        return withLuminosity(withSaturation(b, saturation(s)), luminosity(b));
    case kCGBlendModeColor:
        return withLuminosity(s, luminosity(b));
    default:
        return withLuminosity(b, luminosity(s));
    }
}

bool isNonSeparable(CGBlendMode mode) { return mode >= kCGBlendModeHue && mode <= kCGBlendModeLuminosity; }
bool isMixing(CGBlendMode mode) { return mode >= kCGBlendModeMultiply && mode <= kCGBlendModeLuminosity; }

/// One pixel; result[colors] is alpha.
void blendPixel(CGBlendMode mode, int colors, const float* d, const float* s, float* result) {
    float da = d[colors], sa = s[colors];
    if (mode == kCGBlendModePlusDarker) {
        // White minus the distances of both to white.
        float alpha = result[colors] = std::min(1.f, sa + da);
        for (int k = 0; k < colors; ++k) result[k] = std::max(0.f, alpha - (da - d[k]) - (sa - s[k]));
        return;
    }
    if (!isMixing(mode)) {
        Factors f = factors(mode, sa, da);
        for (int k = 0; k <= colors; ++k) result[k] = f.source * s[k] + f.dest * d[k];
        if (mode == kCGBlendModePlusLighter)
            for (int k = 0; k <= colors; ++k) result[k] = std::min(1.f, result[k]);
        return;
    }
    auto straight = [](float c, float alpha) { return alpha > 0 ? c / alpha : 0; };
    float mixed[4] = {};
    if (isNonSeparable(mode) && colors == 3) {
        RGB m = nonSeparable(mode, {straight(d[0], da), straight(d[1], da), straight(d[2], da)},
                             {straight(s[0], sa), straight(s[1], sa), straight(s[2], sa)});
        mixed[0] = m.r;
        mixed[1] = m.g;
        mixed[2] = m.b;
    } else {
        for (int k = 0; k < colors; ++k) {
            float b = straight(d[k], da), c = straight(s[k], sa);
            // Gray has luminosity and nothing else.
            mixed[k] = !isNonSeparable(mode) ? separable(mode, b, c) : mode == kCGBlendModeLuminosity ? c : b;
        }
    }
    for (int k = 0; k < colors; ++k) result[k] = s[k] * (1 - da) + d[k] * (1 - sa) + sa * da * mixed[k];
    result[colors] = sa + da - sa * da;
}

} // namespace

void blendRow(CGBlendMode mode, int colors, const Planes& dest, const Planes& source, const float* coverage,
              std::size_t n) {
    if (mode == kCGBlendModeNormal) {
        // By far the most common mode, as a plain loop. Alpha comes last, because the other planes need it.
        const float* sa = source[alphaPlane];
        auto over = [&](std::size_t k) {
            float* d = dest[k];
            const float* s = source[k];
            for (std::size_t i = 0; i < n; ++i) d[i] += coverage[i] * (s[i] - sa[i] * d[i]);
        };
        for (std::size_t k = 0; k < static_cast<std::size_t>(colors); ++k) over(k);
        over(alphaPlane);
        return;
    }
    float d[5], s[5], result[5];
    for (std::size_t i = 0; i < n; ++i) {
        if (coverage[i] <= 0) continue;
        auto planeOf = [colors](int k) { return static_cast<std::size_t>(k < colors ? k : alphaPlane); };
        for (int k = 0; k <= colors; ++k) {
            d[k] = dest[planeOf(k)][i];
            s[k] = source[planeOf(k)][i];
        }
        blendPixel(mode, colors, d, s, result);
        for (int k = 0; k <= colors; ++k) dest[planeOf(k)][i] = d[k] + coverage[i] * (result[k] - d[k]);
    }
}

} // namespace cg
