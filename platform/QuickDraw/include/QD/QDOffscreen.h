// QuickDraw's off-screen worlds: a rectangle of pixels and the functions that describe it.
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

// Makes a world on the caller's pixels, which must outlive it; rows are `rowBytes` apart. The colour table
// and the device are ignored. Errors: paramErr (-50) for null pixels, an empty rectangle, short rows or an
// unknown format; memFullErr (-108).
QDErr NewGWorldFromPtr(GWorldPtr* world, UInt32 pixelFormat, const Rect* bounds, CTabHandle colors,
                       GDHandle device, GWorldFlags flags, Ptr pixels, SInt32 rowBytes);
// Null is ignored.
void DisposeGWorld(GWorldPtr world);

// The world's pixel map, which lives as long as the world; null for null. The functions below take it.
PixMapHandle GetGWorldPixMap(GWorldPtr world);

// Bits per pixel.
SInt16 GetPixDepth(PixMapHandle map);
// Keeps the pixels in place until they have been unlocked as often as locked. Always true.
Boolean LockPixels(PixMapHandle map);
void UnlockPixels(PixMapHandle map);
// Null unless the pixels are locked.
Ptr GetPixBaseAddr(PixMapHandle map);
SInt32 GetPixRowBytes(PixMapHandle map);

CF_EXTERN_C_END
