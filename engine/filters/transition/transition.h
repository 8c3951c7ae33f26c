// What transitions share: two pictures and a time.
#pragma once

#include "filter.h"

namespace engine::transitions {

inline InputInfo targetInput() { return imageInput("inputTargetImage", "Target Image"); }
inline InputInfo timeInput() {
    return numberInput("inputTime", "Time", "Time",
                       {.value = 0, .identity = 0, .min = 0, .max = 1, .sliderMin = 0, .sliderMax = 1});
}
inline double time(const Inputs& in) { return in.number("inputTime", 0, 1); }

} // namespace engine::transitions
