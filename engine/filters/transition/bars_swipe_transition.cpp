// CIBarsSwipeTransition: a picture cut into bars that slide away one after the other.
#include "transition.h"
#include "warps.h"

namespace engine::transitions {

namespace {

/// How many bars have begun to slide. The time is even, and at its end the last bar has just left. A bar
/// takes as long as sliding by its longest side takes; along the middle of a slanted extent that is the whole
/// way through, and towards its last corner it grows shorter. (Core Image's pictures show it at two times,
/// angles and offsets; this gives both within 0.002 bars.)
double started(const Inputs& in, const Rect& extent, Point direction, double width, double offset) {
    double c = std::abs(direction.x), s = std::abs(direction.y);
    double wide = extent.width() * c, high = extent.height() * s, length = wide + high;
    double through = std::min(extent.height() / c, extent.width() / s);
    auto bar = [=](double way) { return std::floor(way / width + 1e-9); };
    double lastWhole = bar(std::max(wide, high)), last = bar(length);
    double all = lastWhole + std::sqrt(through / offset);
    if (last > lastWhole) {
        auto gone = [=](double k) {
            double side = std::max(length - k * width, 0.0) / (c * s);
            return k + std::sqrt(std::min(through, side) / offset);
        };
        // Of the shorter ones, the last to leave is one of these two, where `gone` has its peak.
        double peak = std::floor(length / width - width / (4 * c * s * offset));
        all = std::max({all, gone(std::clamp(peak, lastWhole + 1, last)),
                        gone(std::clamp(peak + 1, lastWhole + 1, last))});
    }
    return time(in) * all;
}

/// Bars lie across the direction and slide along themselves, one after the other, ever faster: by the offset
/// times the square of how many have begun after them. An infinite picture has nowhere to slide to; it stays
/// until the time is over.
Image build(const Inputs& in) {
    Image image = in.image("inputImage"), target = in.image("inputTargetImage");
    if (!image) return nullptr;
    if (image->extent().isInfinite()) return time(in) < 1 ? image : target ? target : empty();
    double angle = in.number("inputAngle", -1e6, 1e6), width = in.number("inputWidth", 2, 1e6),
           offset = in.number("inputBarOffset", 1, 1e6);
    Point direction{std::cos(angle), std::sin(angle)}, slide{direction.y, -direction.x};
    Rect extent =
        target && !target->extent().isInfinite() ? image->extent().unite(target->extent()) : image->extent();
    Stretch across = along(extent, direction), way = along(extent, slide);
    double begun = started(in, extent, direction, width, offset);
    Along place{{across.begin * direction.x, across.begin * direction.y}, direction, width};
    Image sliding = warp(image, "bars", upTo(way.length()), place,
                         [=, begun = static_cast<float>(begun), offset = static_cast<float>(offset),
                          most = static_cast<float>(way.length()), x = static_cast<float>(-slide.x),
                          y = static_cast<float>(-slide.y)](float bar) SIMD_INLINE {
                             float since = simd::max(begun - simd::floor(bar), 0);
                             float away = simd::min(offset * since * since, most);
                             return Position{away * x, away * y};
                         });
    return crop(composite(sliding, target), image->extent());
}

const Registrar filter{{"CIBarsSwipeTransition",
                        "Bars Swipe Transition",
                        "Cuts a picture into bars, which slide away one after the other.",
                        fitted("bars that slide by the square of how many began after them", 0.3),
                        "10.5",
                        categories("Transition Video StillImage BuiltIn"),
                        {imageInput(), targetInput(),
                         numberInput("inputAngle", "Angle", "Angle",
                                     {.value = pi, .identity = 0, .sliderMin = 0, .sliderMax = 2 * pi}),
                         numberInput("inputWidth", "Width", "Distance",
                                     {.value = 30, .min = 2, .sliderMin = 2, .sliderMax = 300}),
                         numberInput("inputBarOffset", "Bar Offset", "Scalar",
                                     {.value = 10, .min = 1, .sliderMin = 1, .sliderMax = 100}),
                         timeInput()},
                        build}};

} // namespace

} // namespace engine::transitions
