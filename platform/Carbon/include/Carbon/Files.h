#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <CoreFoundation/FileReference.h>

CF_EXTERN_C_BEGIN

enum { noErr = 0, nsvErr = -35, fnfErr = -43, paramErr = -50, gestaltUndefSelectorErr = -5551 };

#ifndef KAZ_FSREF_DEFINED
#error "FSRef is declared by CoreFoundation/FileReference.h"
#endif

struct HFSUniStr255 {
    UInt16 length; // in UTF-16 units
    UniChar unicode[255];
};
typedef struct HFSUniStr255 HFSUniStr255;

// The older file reference: a volume, a folder number and a short name in Mac Roman.
typedef unsigned char Str63[64]; // the length, then the text
struct FSSpec {
    SInt16 vRefNum;
    SInt32 parID;
    Str63 name;
};
typedef struct FSSpec FSSpec;

typedef UInt32 FSCatalogInfoBitmap;
enum { kFSCatInfoNone = 0, kFSCatInfoNodeID = 0x10 };

// Of the catalogue's facts, the one that is kept here. The root folder of a volume has number 2.
struct FSCatalogInfo {
    UInt32 nodeID;
};
typedef struct FSCatalogInfo FSCatalogInfo;

// Facts of the item at `ref`; each output may be null. `parent` of the topmost folder is all zero. Errors:
// paramErr for a reference that names nothing, fnfErr for an item that is gone.
OSErr FSGetCatalogInfo(const FSRef* ref, FSCatalogInfoBitmap which, FSCatalogInfo* info, HFSUniStr255* name,
                       FSSpec* spec, FSRef* parent);

// The reference of the item that `spec` names. Errors: fnfErr when there is none.
OSErr FSpMakeFSRef(const FSSpec* spec, FSRef* ref);

// The reference of an absolute path in UTF-8. Errors: fnfErr when there is no item.
OSStatus FSPathMakeRef(const UInt8* path, FSRef* ref, Boolean* isDirectory);
// The path, NUL-terminated, in UTF-8. Errors: paramErr when it does not fit or `ref` names nothing.
OSStatus FSRefMakePath(const FSRef* ref, UInt8* path, UInt32 size);

CF_EXTERN_C_END
