// Waiting on any thread.
#pragma once

#include <Carbon/MacTypes.h>

CF_EXTERN_C_BEGIN

// Sleeps until then; returns at once if the time has passed.
OSStatus MPDelayUntil(AbsoluteTime* time);

CF_EXTERN_C_END
