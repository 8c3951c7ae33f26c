// Numbers: a CFNumber is an NSNumber.
#pragma once

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

typedef const struct __CFNumber* CFNumberRef;
typedef const struct __CFBoolean* CFBooleanRef;

typedef enum {
    kCFNumberSInt32Type = 3,
    kCFNumberSInt64Type = 4,
    kCFNumberFloat32Type = 5,
    kCFNumberFloat64Type = 6,
    kCFNumberIntType = 9,
    kCFNumberFloatType = 12,
    kCFNumberDoubleType = 13
} CFNumberType;

// A new number, owned by the caller; null for any other type.
CFNumberRef CFNumberCreate(CFAllocatorRef allocator, CFNumberType type, const void* value);
// Writes the value as `type`; false for any other type.
Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value);

CF_EXTERN_C_END
