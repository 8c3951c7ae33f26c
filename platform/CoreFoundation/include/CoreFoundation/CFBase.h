// The basic types of Core Foundation, and the functions for every object.
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
typedef const struct __CFString* CFStringRef;
typedef struct __CFString* CFMutableStringRef;

typedef struct {
    CFIndex location;
    CFIndex length;
} CFRange;

static inline CFRange CFRangeMake(CFIndex location, CFIndex length) {
    CFRange range = {location, length};
    return range;
}

// Null. There is only one allocator, the C heap, so allocator arguments are ignored.
extern const CFAllocatorRef kCFAllocatorDefault;

// Retains and returns `object`, which must not be null.
CFTypeRef CFRetain(CFTypeRef object);
// Gives up one reference; `object` must not be null.
void CFRelease(CFTypeRef object);
CFIndex CFGetRetainCount(CFTypeRef object);
Boolean CFEqual(CFTypeRef a, CFTypeRef b);
CFHashCode CFHash(CFTypeRef object);
// A new string, owned by the caller.
CFStringRef CFCopyDescription(CFTypeRef object);

CF_EXTERN_C_END
