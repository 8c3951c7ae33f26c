// Time since the machine started, from the monotonic clock.
#include <Carbon/DriverServices.h>
#include <Carbon/Multiprocessing.h>

#include <cerrno>
#include <time.h>

namespace {

constexpr UInt64 kSecond = 1000000000;

UInt64 nanoseconds(AbsoluteTime time) { return (UInt64{time.hi} << 32) | time.lo; }

AbsoluteTime absolute(UInt64 nanoseconds) {
    return {static_cast<UInt32>(nanoseconds), static_cast<UInt32>(nanoseconds >> 32)};
}

} // namespace

AbsoluteTime UpTime(void) {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return absolute(static_cast<UInt64>(now.tv_sec) * kSecond + static_cast<UInt64>(now.tv_nsec));
}

AbsoluteTime AddDurationToAbsolute(Duration duration, AbsoluteTime time) {
    SInt64 added = duration >= 0 ? SInt64{duration} * 1000000 : -SInt64{duration} * 1000;
    return absolute(nanoseconds(time) + static_cast<UInt64>(added));
}

OSStatus MPDelayUntil(AbsoluteTime* time) {
    UInt64 until = nanoseconds(*time);
    timespec when = {static_cast<time_t>(until / kSecond), static_cast<long>(until % kSecond)};
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &when, nullptr) == EINTR) {
    }
    return 0;
}
