// The family's structure classes (rectangles, sizes, points, ranges and times) against NSValue.
#pragma once

#include <hostapi/services.h>

@class NSValue;

namespace bridge {

// True, and the value in `value`, for an object of one of the structure classes. The value is nil for a time
// that no part of the family converts.
bool takeStructure(REALobject object, NSValue*& value);

// A new object of the structure's class, locked for the caller; null for any other value, for a time that no
// part of the family converts, and when the host lacks the class.
REALobject newStructure(NSValue* value);

} // namespace bridge
