// The file manager: files and folders by reference.
#pragma once

#include <Carbon/MacErrors.h>
#include <Carbon/MacTypes.h>
#include <Carbon/UTCUtils.h>
#include <CoreFoundation/CoreFoundation.h>

CF_EXTERN_C_BEGIN

#pragma pack(push, 2)

// A file or folder, opaque. All zero: no item.
struct FSRef {
    UInt8 hidden[80];
};
typedef struct FSRef FSRef;

struct HFSUniStr255 {
    UInt16 length; // in UTF-16 units
    UniChar unicode[255];
};
typedef struct HFSUniStr255 HFSUniStr255;

typedef SInt16 FSVolumeRefNum;

// The older kind of reference: a volume, the number of a folder and a short name in Mac Roman.
struct FSSpec {
    FSVolumeRefNum vRefNum;
    SInt32 parID;
    Str63 name;
};
typedef struct FSSpec FSSpec;

typedef UInt32 FSCatalogInfoBitmap;
enum { kFSCatInfoNone = 0, kFSCatInfoNodeID = 0x10 };

// The number of the item is the only fact that is filled in. The root folder of a volume has number 2.
struct FSCatalogInfo {
    UInt16 nodeFlags;
    FSVolumeRefNum volume;
    UInt32 parentDirID;
    UInt32 nodeID;
    UInt8 sharingFlags;
    UInt8 userPrivileges;
    UInt8 reserved1;
    UInt8 reserved2;
    UTCDateTime createDate;
    UTCDateTime contentModDate;
    UTCDateTime attributeModDate;
    UTCDateTime accessDate;
    UTCDateTime backupDate;
    UInt32 permissions[4];
    UInt8 finderInfo[16];
    UInt8 extFinderInfo[16];
    UInt64 dataLogicalSize;
    UInt64 dataPhysicalSize;
    UInt64 rsrcLogicalSize;
    UInt64 rsrcPhysicalSize;
    UInt32 valence;
    UInt32 textEncodingHint;
};
typedef struct FSCatalogInfo FSCatalogInfo;

#pragma pack(pop)

// Facts about the item at `ref`; each output may be null. The parent of the topmost folder is all zero.
// Errors: paramErr if `ref` names nothing, fnfErr if the item is gone.
OSErr FSGetCatalogInfo(const FSRef* ref, FSCatalogInfoBitmap which, FSCatalogInfo* info, HFSUniStr255* name,
                       FSSpec* spec, FSRef* parent);

// The reference of the item that `spec` names. Errors: fnfErr if there is none.
OSErr FSpMakeFSRef(const FSSpec* spec, FSRef* ref);

// The reference of an absolute path in UTF-8. Errors: fnfErr if there is no such item.
OSStatus FSPathMakeRef(const UInt8* path, FSRef* ref, Boolean* isDirectory);
// The path in UTF-8, NUL-terminated. Errors: paramErr if it does not fit or `ref` names nothing.
OSStatus FSRefMakePath(const FSRef* ref, UInt8* path, UInt32 size);

CF_EXTERN_C_END
