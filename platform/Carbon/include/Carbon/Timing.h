#pragma once

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

typedef struct {
    UInt32 lo;
    UInt32 hi;
} AbsoluteTime; // nanoseconds since the machine started

typedef SInt32 Duration; // positive: milliseconds; negative: microseconds

enum { durationMillisecond = 1, durationMicrosecond = -1 };

AbsoluteTime UpTime(void);
AbsoluteTime AddDurationToAbsolute(Duration duration, AbsoluteTime time);
// Sleeps until then; returns at once for a time that has passed.
OSStatus MPDelayUntil(AbsoluteTime* time);

CF_EXTERN_C_END
