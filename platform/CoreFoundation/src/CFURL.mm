// CFURL over NSURL.
#include "autorelease.h"

#include <CoreFoundation/CFURL.h>
#include <cf/filereference.h>

#include <sys/stat.h>

namespace {

CFURLRef owned(NSURL* url) { return reinterpret_cast<CFURLRef>([url retain]); }

// The path of a file URL, nil for any other.
NSString* filePath(CFURLRef url) {
    NSURL* object = (NSURL*)url;
    return [object isFileURL] ? [object path] : nil;
}

} // namespace

CFURLRef CFURLCreateWithString(CFAllocatorRef, CFStringRef text, CFURLRef base) {
    return inPool([&]() -> CFURLRef {
        NSString* string = (NSString*)text;
        if ([string length] == 0) return nullptr;
        return owned([NSURL URLWithString:string relativeToURL:(NSURL*)base]);
    });
}

CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef, CFStringRef path, CFURLPathStyle,
                                       Boolean isDirectory) {
    return inPool([&]() -> CFURLRef {
        if ([(NSString*)path length] == 0) return nullptr;
        return owned([NSURL fileURLWithPath:(NSString*)path isDirectory:isDirectory]);
    });
}

CFURLRef CFURLCreateFromFSRef(CFAllocatorRef, const FSRef* ref) {
    return inPool([&]() -> CFURLRef {
        const char* path = cf::pathOfFileReference(ref);
        struct stat status;
        if (!path || lstat(path, &status) != 0) return nullptr;
        NSString* text = [NSString stringWithUTF8String:path]; // nil for a name that is not UTF-8
        return text ? owned([NSURL fileURLWithPath:text isDirectory:S_ISDIR(status.st_mode)]) : nullptr;
    });
}

CFURLRef CFURLCreateCopyAppendingPathComponent(CFAllocatorRef, CFURLRef url, CFStringRef component,
                                               Boolean isDirectory) {
    return inPool([&]() -> CFURLRef {
        NSString* path = filePath(url);
        if (path)
            return owned([NSURL fileURLWithPath:[path stringByAppendingPathComponent:(NSString*)component]
                                    isDirectory:isDirectory]);
        return owned([(NSURL*)url URLByAppendingPathComponent:(NSString*)component]);
    });
}

CFURLRef CFURLCreateCopyDeletingLastPathComponent(CFAllocatorRef, CFURLRef url) {
    return inPool([&]() -> CFURLRef {
        NSString* path = filePath(url);
        if (path)
            return owned([NSURL fileURLWithPath:[path stringByDeletingLastPathComponent] isDirectory:YES]);
        return owned([(NSURL*)url URLByDeletingLastPathComponent]);
    });
}

CFStringRef CFURLCopyLastPathComponent(CFURLRef url) {
    return inPool(
        [&]() -> CFStringRef { return (CFStringRef)[[[(NSURL*)url path] lastPathComponent] copy]; });
}

CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle) {
    return inPool([&]() -> CFStringRef { return (CFStringRef)[[(NSURL*)url path] copy]; });
}

CFStringRef CFURLGetString(CFURLRef url) { return (CFStringRef)[(NSURL*)url absoluteString]; }

Boolean CFURLCreateDataAndPropertiesFromResource(CFAllocatorRef, CFURLRef url, CFDataRef* data,
                                                 CFDictionaryRef*, CFArrayRef, SInt32*) {
    return inPool([&]() -> Boolean {
        // Asked first, because GNUstep waits a minute for a loader that there is not.
        NSURLRequest* request = url ? [NSURLRequest requestWithURL:(NSURL*)url] : nil;
        bool loads = request && [NSURLConnection canHandleRequest:request];
        *data = loads ? (CFDataRef)[[NSData dataWithContentsOfURL:(NSURL*)url] retain] : nullptr;
        return *data != nullptr;
    });
}

Boolean CFURLGetFSRef(CFURLRef url, FSRef* ref) {
    return inPool([&]() -> Boolean {
        NSString* path = filePath(url);
        const char* bytes = [path fileSystemRepresentation];
        struct stat status;
        if (!bytes || lstat(bytes, &status) != 0) return false;
        cf::makeFileReference(bytes, ref);
        return true;
    });
}
