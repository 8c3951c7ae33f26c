// URLs: a CFURL is an NSURL.
#pragma once

#include <CoreFoundation/CFArray.h>
#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFDictionary.h>
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

// Loads what a URL names from the network; the caller owns `data`. False, and null data, when nothing is
// there or nothing here loads URLs of this scheme. Properties and errors are not told.
Boolean CFURLCreateDataAndPropertiesFromResource(CFAllocatorRef allocator, CFURLRef url, CFDataRef* data,
                                                 CFDictionaryRef* properties, CFArrayRef desired,
                                                 SInt32* error);

// True if the URL names an existing item of the file system.
Boolean CFURLGetFSRef(CFURLRef url, struct FSRef* ref);

CF_EXTERN_C_END
