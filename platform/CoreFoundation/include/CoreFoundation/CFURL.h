// URLs: a CFURL is an NSURL.
#pragma once

#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFString.h>

CF_EXTERN_C_BEGIN

typedef const struct __CFURL* CFURLRef;
struct FSRef;

typedef enum { kCFURLPOSIXPathStyle = 0 } CFURLPathStyle;

// New URLs, owned by the caller; null if the text is not a URL or the item is unknown.
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

// True if the URL names an existing item of the file system.
Boolean CFURLGetFSRef(CFURLRef url, struct FSRef* ref);

CF_EXTERN_C_END
