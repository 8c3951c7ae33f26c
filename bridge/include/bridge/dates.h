// Host dates against NSDate. Both sides are the same wall-clock time, to the second.
#pragma once

#include <hostapi/services.h>

@class NSDate;

// The host date's fields taken as local time, autoreleased; nil when a field cannot be read.
NSDate* NewNSDate(REALobject date);

// A new host date, locked for the caller; null when the host makes none.
REALobject NSDateRB(NSDate* date);
