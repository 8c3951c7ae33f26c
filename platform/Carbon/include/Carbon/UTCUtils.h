// Times of the file manager.
#pragma once

#include <CoreFoundation/CFBase.h>

#pragma pack(push, 2)

// Seconds since 1904 in 48 bits, and 65536ths of a second.
struct UTCDateTime {
    UInt16 highSeconds;
    UInt32 lowSeconds;
    UInt16 fraction;
};
typedef struct UTCDateTime UTCDateTime;

#pragma pack(pop)
