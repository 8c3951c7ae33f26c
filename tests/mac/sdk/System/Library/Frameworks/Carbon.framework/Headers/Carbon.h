// The file manager, Gestalt and timing of Mac OS X 10.5, as far as the product uses them.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

enum { noErr = 0 };

#pragma pack(push, 2)

typedef unsigned char StrFileName[64];
struct FSSpec {
    short vRefNum;
    SInt32 parID;
    StrFileName name;
};
typedef struct FSSpec FSSpec;
struct FSRef {
    UInt8 hidden[80];
};
typedef struct FSRef FSRef;
struct HFSUniStr255 {
    UInt16 length;
    UniChar unicode[255];
};
typedef struct HFSUniStr255 HFSUniStr255;

struct UTCDateTime {
    UInt16 highSeconds;
    UInt32 lowSeconds;
    UInt16 fraction;
};
typedef struct UTCDateTime UTCDateTime;
typedef UInt32 FSCatalogInfoBitmap;
enum { kFSCatInfoNone = 0x00000000, kFSCatInfoNodeID = 0x00000010 };
struct FSCatalogInfo {
    UInt16 nodeFlags;
    SInt16 volume;
    UInt32 parentDirID;
    UInt32 nodeID;
    UInt8 sharingFlags;
    UInt8 userPrivileges;
    UInt8 reserved1;
    UInt8 reserved2;
    UTCDateTime createDate, contentModDate, attributeModDate, accessDate, backupDate;
    UInt32 permissions[4];
    UInt8 finderInfo[16];
    UInt8 extFinderInfo[16];
    unsigned long long dataLogicalSize, dataPhysicalSize, rsrcLogicalSize, rsrcPhysicalSize;
    UInt32 valence;
    UInt32 textEncodingHint;
};
typedef struct FSCatalogInfo FSCatalogInfo;

#pragma pack(pop)

CF_EXPORT OSErr FSGetCatalogInfo(const FSRef* ref, FSCatalogInfoBitmap whichInfo, FSCatalogInfo* catalogInfo,
                                 HFSUniStr255* outName, FSSpec* fsSpec, FSRef* parentRef);
CF_EXPORT OSErr FSpMakeFSRef(const FSSpec* source, FSRef* newRef);
enum { kFrameworksFolderType = 'fram', kCreateFolder = true };
CF_EXPORT OSErr FSFindFolder(SInt16 vRefNum, OSType folderType, Boolean createFolder, FSRef* foundRef);

enum { gestaltSystemVersionMajor = 'sys1', gestaltSystemVersionMinor = 'sys2' };
CF_EXPORT OSErr Gestalt(OSType selector, SInt32* response);

typedef SInt32 Duration;
enum { durationMillisecond = 1 };
struct UnsignedWide { // least significant first on i386
    UInt32 lo, hi;
};
typedef struct UnsignedWide UnsignedWide;
typedef UnsignedWide AbsoluteTime;
CF_EXPORT AbsoluteTime UpTime(void);
CF_EXPORT AbsoluteTime AddDurationToAbsolute(Duration duration, AbsoluteTime time);
CF_EXPORT OSStatus MPDelayUntil(AbsoluteTime* expirationTime);
