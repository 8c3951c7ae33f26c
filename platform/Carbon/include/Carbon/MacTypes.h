// The basic types of Carbon that Core Foundation does not declare.
#pragma once

#include <CoreFoundation/CFBase.h>

typedef unsigned char Str63[64]; // the length, then the text

struct UnsignedWide {
    UInt32 lo;
    UInt32 hi;
};
typedef struct UnsignedWide UnsignedWide;

typedef UnsignedWide AbsoluteTime; // nanoseconds since the machine started
typedef SInt32 Duration;           // positive: milliseconds; negative: microseconds
