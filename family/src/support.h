// What more than one class of this plugin needs.
#pragma once

#include <objects/wrapper.h>

namespace family {

using namespace objects;

// True, and a NilObjectException raised, when the argument is null.
inline bool raisesWhenNull(const void* argument, const char* message) {
    if (argument) return false;
    RaiseException(bridge::kNilObject, message);
    return true;
}

// A copy of a Core Graphics image in a new picture of its size, locked for the caller; null for null and when
// the host makes no picture.
REALpicture newPictureOf(CGImageRef image);

} // namespace family
