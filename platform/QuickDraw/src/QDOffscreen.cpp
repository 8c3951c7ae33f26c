// Off-screen worlds on the caller's pixels.
#include <QD/QDOffscreen.h>

#include <new>

struct PixMap {
    Ptr pixels;
    SInt32 rowBytes;
    SInt16 depth;
    int locks;
};

struct OpaqueGWorldPtr {
    PixMap map;
    PixMap* master; // what a handle to the map points at
};

namespace {

constexpr QDErr kParameterError = -50;
constexpr QDErr kMemoryFull = -108;

// Bytes per pixel; 0 for an unknown format.
SInt32 pixelSize(UInt32 format) {
    switch (format) {
    case k16BE555PixelFormat:
        return 2;
    case k24RGBPixelFormat:
        return 3;
    case k32ARGBPixelFormat:
        return 4;
    }
    return 0;
}

} // namespace

QDErr NewGWorldFromPtr(GWorldPtr* world, UInt32 pixelFormat, const Rect* bounds, CTabHandle, GDHandle,
                       GWorldFlags, Ptr pixels, SInt32 rowBytes) {
    SInt32 size = pixelSize(pixelFormat);
    if (!world || !bounds || !pixels || !size || bounds->right <= bounds->left ||
        bounds->bottom <= bounds->top || rowBytes < (bounds->right - bounds->left) * size)
        return kParameterError;
    *world =
        new (std::nothrow) OpaqueGWorldPtr{{pixels, rowBytes, static_cast<SInt16>(size * 8), 0}, nullptr};
    if (!*world) return kMemoryFull;
    (*world)->master = &(*world)->map;
    return 0;
}

void DisposeGWorld(GWorldPtr world) { delete world; }

PixMapHandle GetGWorldPixMap(GWorldPtr world) { return world ? &world->master : nullptr; }

SInt16 GetPixDepth(PixMapHandle map) { return (*map)->depth; }

Boolean LockPixels(PixMapHandle map) {
    ++(*map)->locks;
    return true;
}

void UnlockPixels(PixMapHandle map) {
    if ((*map)->locks > 0) --(*map)->locks;
}

Ptr GetPixBaseAddr(PixMapHandle map) { return (*map)->locks > 0 ? (*map)->pixels : nullptr; }

SInt32 GetPixRowBytes(PixMapHandle map) { return (*map)->rowBytes; }
