#pragma once

#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFString.h>

CF_EXTERN_C_BEGIN

typedef const struct __CFURL* CFURLRef;
struct FSRef;

typedef enum { kCFURLPOSIXPathStyle = 0 } CFURLPathStyle;

// Makers: a new URL that the caller owns, or null when the text is not a URL or the item is not known.
CFURLRef CFURLCreateWithString(CFAllocatorRef allocator, CFStringRef text, CFURLRef base);
CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef allocator, CFStringRef path, CFURLPathStyle style,
                                       Boolean isDirectory);
CFURLRef CFURLCreateFromFSRef(CFAllocatorRef allocator, const struct FSRef* ref);
CFURLRef CFURLCreateCopyAppendingPathComponent(CFAllocatorRef allocator, CFURLRef url, CFStringRef component,
                                               Boolean isDirectory);
CFURLRef CFURLCreateCopyDeletingLastPathComponent(CFAllocatorRef allocator, CFURLRef url);

// New strings, owned by the caller; null for a URL without a path.
CFStringRef CFURLCopyLastPathComponent(CFURLRef url);
CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle style);
// Borrowed from the URL.
CFStringRef CFURLGetString(CFURLRef url);

// True when the URL names a file-system item that exists.
Boolean CFURLGetFSRef(CFURLRef url, struct FSRef* ref);

CF_EXTERN_C_END
