// Bytes: a CFData is an NSData.
#pragma once

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

typedef const struct __CFData* CFDataRef;
typedef struct __CFData* CFMutableDataRef;

// A copy of `length` bytes, owned by the caller.
CFDataRef CFDataCreate(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length);
// Empty data that can grow; `capacity` is a hint.
CFMutableDataRef CFDataCreateMutable(CFAllocatorRef allocator, CFIndex capacity);
CFIndex CFDataGetLength(CFDataRef data);
const UInt8* CFDataGetBytePtr(CFDataRef data);
UInt8* CFDataGetMutableBytePtr(CFMutableDataRef data);
void CFDataSetLength(CFMutableDataRef data, CFIndex length);
void CFDataAppendBytes(CFMutableDataRef data, const UInt8* bytes, CFIndex length);

CF_EXTERN_C_END
