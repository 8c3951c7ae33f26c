#pragma once

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
#define CF_EXTERN_C_BEGIN extern "C" {
#define CF_EXTERN_C_END }
#else
#define CF_EXTERN_C_BEGIN
#define CF_EXTERN_C_END
#endif

CF_EXTERN_C_BEGIN

typedef unsigned char Boolean;
typedef unsigned char UInt8;
typedef signed char SInt8;
typedef uint16_t UInt16;
typedef int16_t SInt16;
typedef uint32_t UInt32;
typedef int32_t SInt32;
typedef uint64_t UInt64;
typedef int64_t SInt64;
typedef UInt16 UniChar;
typedef SInt32 OSStatus;
typedef SInt16 OSErr;
typedef UInt32 OSType;

typedef long CFIndex;
typedef unsigned long CFHashCode;
typedef unsigned long CFTypeID;
typedef unsigned long CFOptionFlags;

typedef const void* CFTypeRef;
typedef const struct __CFAllocator* CFAllocatorRef;

typedef struct {
    CFIndex location;
    CFIndex length;
} CFRange;

static inline CFRange CFRangeMake(CFIndex location, CFIndex length) {
    CFRange range = {location, length};
    return range;
}

// There is one allocator, the C heap: every allocator argument may be null.
#define kCFAllocatorDefault ((CFAllocatorRef)0)
#define kCFAllocatorNull ((CFAllocatorRef)-1) // as a deallocator: leave the memory alone

// Retains and returns `object`, which must not be null.
CFTypeRef CFRetain(CFTypeRef object);
// Gives one reference back; `object` must not be null.
void CFRelease(CFTypeRef object);
CFIndex CFGetRetainCount(CFTypeRef object);
Boolean CFEqual(CFTypeRef a, CFTypeRef b);
CFHashCode CFHash(CFTypeRef object);
// A new string, owned by the caller.
const struct __CFString* CFCopyDescription(CFTypeRef object);

CF_EXTERN_C_END
