#pragma once

#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFString.h>
#include <CoreFoundation/CFURL.h>

CF_EXTERN_C_BEGIN

typedef struct __CFBundle* CFBundleRef;

// A bundle of the folder at `url`, owned by the caller; null when there is no folder.
CFBundleRef CFBundleCreate(CFAllocatorRef allocator, CFURLRef url);
// Loads the shared library inside the bundle that bears its name; false when there is none.
Boolean CFBundleLoadExecutable(CFBundleRef bundle);
// Null when the executable is not loaded or has no such function.
void* CFBundleGetFunctionPointerForName(CFBundleRef bundle, CFStringRef name);

CF_EXTERN_C_END
