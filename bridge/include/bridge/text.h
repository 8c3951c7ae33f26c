// Text between the host and Cocoa.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <hostapi/services.h>

#include <cstddef>

@class NSString;

// A new platform string that the caller releases; null for null, and when no conversion works.
CFStringRef RBString2CFString(REALstring string);

// A new host string, tagged UTF-8, with one reference for the caller; null for a null or empty string, and
// when it cannot be converted. The text ends at an embedded NUL.
REALstring CFString2RBString(CFStringRef string);

// The bytes of a host string in an encoding, or in its own for kREALTextEncodingUnknown; in that case, on a
// host without "PluginGetStringData", out->length must come in as the number of bytes to make room for. True
// when `out` was filled; it is given back with disposeStringData.
bool REALGetStringData(REALstring string, std::uint32_t encoding, REALstringData* out);

namespace bridge {

// Gives back what REALGetStringData filled: to the host or, where that has no such service, to the heap.
// Either way the bytes are a block of the C heap.
void disposeStringData(REALstringData& data);

// Like RBString2CFString, but autoreleased.
NSString* temporaryString(REALstring string);

// A new host string of `length` bytes, with one reference for the caller; null when the host makes none.
REALstring newString(const char* text, std::size_t length, std::uint32_t encoding);

} // namespace bridge
