// The family's structure classes (rectangles, sizes, points, ranges and times) against NSValue.
#pragma once

#include <hostapi/services.h>

#include <optional>

@class NSValue;

namespace bridge {

// The value of an object of one of the structure classes; nothing for any other object. The value is nil for
// a time that no part of the family converts.
std::optional<NSValue*> valueOfStructure(REALobject object);

// A new object of the structure's class, locked for the caller; null for any other value, for a time that no
// part of the family converts, and when the host lacks the class.
REALobject newStructure(NSValue* value);

} // namespace bridge
