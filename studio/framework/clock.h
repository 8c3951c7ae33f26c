// The clock behind Microseconds and Timer, which never goes back.
#pragma once

#include <ctime>

namespace studio {

inline double microseconds() {
    timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    return double(time.tv_sec) * 1e6 + double(time.tv_nsec) / 1e3;
}

} // namespace studio
