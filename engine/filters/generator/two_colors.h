// What generators of two colours share.
#pragma once

#include "filter.h"
#include "kernel.h"

namespace engine::generators {

constexpr Color white{1, 1, 1, 1}, black{0, 0, 0, 1};

/// An infinite mix of inputColor0 and inputColor1: the first where amount(position) is 0, the second where it
/// is 1.
template <class Place, class Amount>
Image twoColors(std::string name, const Inputs& in, const Place& place, Amount amount) {
    return eachPlace(std::move(name), Rect::infinite(), place,
                     [=, color0 = in.color("inputColor0"),
                      color1 = in.color("inputColor1")](const RenderContext& context) {
                         return [=, first = pixel(context.color(color0)),
                                 second = pixel(context.color(color1))](auto position)
                                    SIMD_INLINE { return mix(first, second, amount(position)); };
                     });
}

} // namespace engine::generators
