// A page that curls up over another one, as CIPageCurlTransition and CIPageCurlWithShadowTransition show it.
#pragma once

#include "transition.h"
#include "warps.h"

namespace engine::transitions {

/// asin for 0..1, to 1e-7 (M. Abramowitz, I. Stegun, "Handbook of Mathematical Functions", 1964, 4.4.46).
SIMD_INLINE inline float asinUnit(float x) {
    x = simd::unit(x);
    float p = -0.0170881256f + x * (0.0066700901f - x * 0.0012624911f);
    p = 1.5707963050f +
        x * (-0.2145988016f + x * (0.0889789874f + x * (-0.0501743046f + x * (0.0308918810f + x * p))));
    return static_cast<float>(pi / 2) - simd::sqrt(1 - x) * p;
}

/// A page that rolls up onto a cylinder from where its extent begins in the direction of the angle. Before
/// the line where it leaves the ground, the page is flat. Behind, it goes up the cylinder's front half and
/// back over the upper one; there, and flat again above the page, its back is seen. So the back is mirrored
/// in a line a quarter of the cylinder's circumference behind the first one, as Core Image's pictures show,
/// and the two places of that line that they show say how the page moves with the time.
struct Curl {
    Point direction;
    double leaves, radius;
    Rect extent;

    Curl(const Inputs& in, const Rect& extent) : radius(in.number("inputRadius", 0.01, 1e5)), extent(extent) {
        double angle = in.number("inputAngle", -1e6, 1e6), t = time(in);
        direction = {std::cos(angle), std::sin(angle)};
        Stretch way = along(extent, direction);
        leaves = way.begin + t * (1 + 0.1085 * (1 - t)) * (way.length() + radius);
    }

    /// How far behind the line where the page leaves the ground.
    Along behind() const {
        return {{leaves * direction.x, leaves * direction.y}, {-direction.x, -direction.y}, 1};
    }
};

/// What a pixel, `behind` the line, shows of the page's upper layer; `r` is the radius.
struct UpperLayer {
    float r;
    /// How far along the page, from that line on.
    SIMD_INLINE float page(float behind) const {
        float up = r * (static_cast<float>(pi) - asinUnit(behind / r));
        return behind > 0 ? up : r * static_cast<float>(pi) - behind;
    }
    /// How much the surface faces backwards: 0 seen from above, 1 at the outline.
    SIMD_INLINE float tilt(float behind) const { return simd::unit(behind / r); }
};
/// The same of the lower layer: the front of the page.
struct LowerLayer {
    float r;
    SIMD_INLINE float page(float behind) const { return behind > 0 ? r * asinUnit(behind / r) : behind; }
    SIMD_INLINE float tilt(float behind) const { return -simd::unit(behind / r); }
};

/// A picture on a layer of the page; the cylinder's outline is antialiased.
template <class Layer>
Image onLayer(const Image& picture, const Curl& curl, Layer layer) {
    if (!picture) return nullptr;
    Rect page = picture->extent();
    Reach reach{[all = page.unite(curl.extent)](const Rect&) { return all; },
                [=](const Rect&) { return page; }};
    auto x = static_cast<float>(-curl.direction.x), y = static_cast<float>(-curl.direction.y);
    Image rolled = warp(picture, "page curl", reach, curl.behind(), [=](float behind) SIMD_INLINE {
        float away = layer.page(behind) - behind;
        return Position{away * x, away * y};
    });
    return weighted(rolled, "page curl outline", curl.behind(),
                    [r = layer.r](float behind) SIMD_INLINE { return simd::unit(r - behind + 0.5f); });
}

/// The picture of a lit ball, of which each pixel shows the place that is tilted as the layer is.
template <class Layer>
Image litBy(const Image& shading, const Curl& curl, Layer layer) {
    if (!shading || shading->extent().isInfinite() || shading->extent().isEmpty()) return shading;
    Rect ball = shading->extent();
    Reach reach{[all = curl.extent](const Rect&) { return all; }, [=](const Rect&) { return ball; }};
    Point middle{(ball.x0 + ball.x1) / 2, (ball.y0 + ball.y1) / 2}, d = curl.direction;
    // Both the pixel's place and its distance behind the line, without which it cannot be tilted.
    double first = curl.leaves;
    return warp(clampToEdge(shading), "page shading", reach, From{middle},
                [=, x = static_cast<float>(-d.x), y = static_cast<float>(-d.y),
                 begin = static_cast<float>(first - middle.x * d.x - middle.y * d.y),
                 halfWidth = static_cast<float>(ball.width() / 2),
                 halfHeight = static_cast<float>(ball.height() / 2)](Position p) SIMD_INLINE {
                    float tilt = layer.tilt(begin + p.x * x + p.y * y);
                    return Position{halfWidth * tilt * x - p.x, halfHeight * tilt * y - p.y};
                });
}

/// Source atop: light or shadow on a layer, and nowhere else.
inline Image atop(const Image& above, const Image& below) {
    if (!above || !below) return below;
    return apply(*findFilter("CISourceAtopCompositing"),
                 {{"inputImage", above}, {"inputBackgroundImage", below}});
}

/// The extent that is curled: inputExtent, or the image's where it is empty.
inline Rect pageExtent(const Inputs& in, const Image& image) {
    Rect extent = in.rect("inputExtent");
    if (extent.isEmpty()) extent = image->extent();
    return extent.isInfinite() ? Rect{-1e5, -1e5, 1e5, 1e5} : extent;
}

inline InputInfo backsideInput() {
    InputInfo info = imageInput("inputBacksideImage", "Backside Image");
    info.type.clear();
    return info;
}
inline InputInfo curlAngleInput() {
    return numberInput("inputAngle", "Angle", "Angle",
                       {.value = 0, .identity = 0, .sliderMin = -pi, .sliderMax = pi});
}
inline InputInfo curlRadiusInput() {
    return numberInput("inputRadius", "Radius", "Distance",
                       {.value = 100, .min = 0.01, .sliderMin = 0.01, .sliderMax = 400});
}

} // namespace engine::transitions
