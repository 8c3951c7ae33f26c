// Folders that hold a shared library.
#pragma once

#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFString.h>
#include <CoreFoundation/CFURL.h>

CF_EXTERN_C_BEGIN

typedef struct __CFBundle* CFBundleRef;

// The bundle of the folder at `url`, owned by the caller; null if there is no such folder.
CFBundleRef CFBundleCreate(CFAllocatorRef allocator, CFURLRef url);
// Loads the shared library in the bundle that has the bundle's name; false if there is none.
Boolean CFBundleLoadExecutable(CFBundleRef bundle);
// Null when the executable is not loaded or has no such function.
void* CFBundleGetFunctionPointerForName(CFBundleRef bundle, CFStringRef name);

CF_EXTERN_C_END
