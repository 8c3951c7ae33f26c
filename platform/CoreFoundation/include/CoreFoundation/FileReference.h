// What stands behind an FSRef: an interned path. Shared by CFURL and the Carbon file manager; not Apple's
// API.
#pragma once

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

// 80 opaque bytes, as on a Mac. All zero: no item.
#ifndef KAZ_FSREF_DEFINED
#define KAZ_FSREF_DEFINED
struct FSRef {
    UInt8 hidden[80];
};
typedef struct FSRef FSRef;
#endif

// Fills `ref` for the absolute path, which need not exist. "/" and "/a/b" alike, no trailing slash is kept.
void FileReferenceMake(const char* path, FSRef* ref);
// The path, valid for the life of the process; null when `ref` was not made here.
const char* FileReferencePath(const FSRef* ref);

CF_EXTERN_C_END
