// Time since the machine started.
#pragma once

#include <Carbon/MacTypes.h>

CF_EXTERN_C_BEGIN

enum { durationMicrosecond = -1, durationMillisecond = 1 };

AbsoluteTime UpTime(void);
AbsoluteTime AddDurationToAbsolute(Duration duration, AbsoluteTime time);

CF_EXTERN_C_END
