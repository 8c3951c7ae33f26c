// CFBundle: a folder, and the shared library in it once it is loaded.
#include "autorelease.h"

#include <CoreFoundation/CFBundle.h>

#include <dlfcn.h>

@interface KazBundle : NSObject {
  @public
    NSString* path;
    void* executable;
}
@end

@implementation KazBundle

- (void)dealloc {
    if (executable) dlclose(executable);
    [path release];
    [super dealloc];
}

@end

CFBundleRef CFBundleCreate(CFAllocatorRef, CFURLRef url) {
    return inPool([&]() -> CFBundleRef {
        NSString* path = [(NSURL*)url isFileURL] ? [(NSURL*)url path] : nil;
        BOOL isDirectory = NO;
        if (![[NSFileManager defaultManager] fileExistsAtPath:path isDirectory:&isDirectory] || !isDirectory)
            return nullptr;
        KazBundle* bundle = [[KazBundle alloc] init];
        bundle->path = [path copy];
        return reinterpret_cast<CFBundleRef>(bundle);
    });
}

Boolean CFBundleLoadExecutable(CFBundleRef bundle) {
    return inPool([&]() -> Boolean {
        KazBundle* object = reinterpret_cast<KazBundle*>(bundle);
        if (!object->executable) {
            NSString* name = [[object->path lastPathComponent] stringByDeletingPathExtension];
            NSString* file = [object->path stringByAppendingPathComponent:name];
            object->executable = dlopen([file fileSystemRepresentation], RTLD_NOW | RTLD_LOCAL);
        }
        return object->executable != nullptr;
    });
}

void* CFBundleGetFunctionPointerForName(CFBundleRef bundle, CFStringRef name) {
    return inPool([&]() -> void* {
        KazBundle* object = reinterpret_cast<KazBundle*>(bundle);
        return object->executable ? dlsym(object->executable, [(NSString*)name UTF8String]) : nullptr;
    });
}
