// QuickDraw's off-screen worlds, as far as Core Graphics and Core Image meet them: a rectangle of pixels and
// the functions that tell about it.
#pragma once

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

typedef char* Ptr;
typedef SInt16 QDErr;
typedef struct OpaqueGWorldPtr* GWorldPtr;
typedef struct PixMap** PixMapHandle;
typedef struct ColorTable** CTabHandle;
typedef struct GDevice** GDHandle;
typedef UInt32 GWorldFlags;

typedef struct {
    SInt16 top, left, bottom, right;
} Rect;

enum {
    k16BE555PixelFormat = 16,
    k24RGBPixelFormat = 24,
    k32ARGBPixelFormat = 32,
};

// Makes a world upon the caller's pixels, which must outlive it; pixels of one row follow each other, rows
// are `rowBytes` apart. The colour table and the device do not matter here. Errors: paramErr (-50) for no
// pixels, an empty rectangle, rows too short or another format, memFullErr (-108).
QDErr NewGWorldFromPtr(GWorldPtr* world, UInt32 pixelFormat, const Rect* bounds, CTabHandle colors,
                       GDHandle device, GWorldFlags flags, Ptr pixels, SInt32 rowBytes);
// Null is fine.
void DisposeGWorld(GWorldPtr world);

// The world's pixel map, which lives as long as the world; null for null. The functions below take it.
PixMapHandle GetGWorldPixMap(GWorldPtr world);

// Bits a pixel.
SInt16 GetPixDepth(PixMapHandle map);
// Pins the pixels to their place until they are unlocked as often; always true here.
Boolean LockPixels(PixMapHandle map);
void UnlockPixels(PixMapHandle map);
// Null unless the pixels are locked.
Ptr GetPixBaseAddr(PixMapHandle map);
SInt32 GetPixRowBytes(PixMapHandle map);

CF_EXTERN_C_END
