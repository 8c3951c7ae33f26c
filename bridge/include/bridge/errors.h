// Every error reaches the program as a host exception. Raising does not unwind: the caller returns its empty
// result right after.
#pragma once

#include <hostapi/services.h>

@class NSException, NSString;

// Raises a host exception of the named class, or a "RuntimeException" where the host does not know that
// class.
void RaiseException(const char* exceptionClassName, const char* message, unsigned long errorNumber = 0);

// Raises "OutOfBoundsException" for a value outside 0 to count - 1.
void RaiseOutOfBoundsException(std::int64_t value, std::int64_t lowerBound, std::int64_t count,
                               const char* parameterName, const char* methodName);

// Logs the Cocoa exception and raises the host exception that the family makes of it.
void RaiseNSExceptionKaz(NSException* exception);

namespace bridge {

inline constexpr char kNilObject[] = "NilObjectException";
inline constexpr char kUnsupportedOperation[] = "UnsupportedOperationException";
inline constexpr char kOutOfBounds[] = "OutOfBoundsException";
inline constexpr char kOutOfMemory[] = "OutOfMemoryException";

// A new "RuntimeException" with a message, locked for the caller; null when the host makes none.
REALobject newRuntimeException(NSString* message);

} // namespace bridge
