// Host pictures against Core Graphics images.
#pragma once

#include <CoreGraphics/CoreGraphics.h>
#include <bridge/owned.h>
#include <hostapi/services.h>

struct PixMap; // QuickDraw's

// A new image of a picture with its mask applied, owned by the caller; null when the host shows no pixels.
// The mask may be null.
CGImageRef CreateCGImageInternal(REALpicture picture, REALpicture mask);

// Draws `source` into `destination`, both from their origins: through the host's own drawing method or, where
// that is missing and the size stays the same, by copying rows.
void GraphicsDrawPicture(REALpicture destination, REALpicture source, int x, int y, int w, int h, int sx,
                         int sy, int sw, int sh);

// The system's "ApplicationServices.framework", loaded; owned by the caller, null when it cannot be loaded.
CFBundleRef LoadFrameworkBundle();

namespace bridge {

// The picture's image by every way there is: the host's own copy, the picture's description, and a copy of
// the picture. Owned by the caller; null when all fail.
CGImageRef copyCGImage(REALpicture picture);

// After a lock of a picture's description that failed: hosts before 2012.0 want it undone all the same.
void undoFailedLock(REALpicture picture);

// The pixels of a QuickDraw off-screen world, 4 bytes each, locked for a scope. False when the world has
// another depth or does not show its pixels, and on a system without QuickDraw.
class WorldPixels {
  public:
    explicit WorldPixels(void* world);
    ~WorldPixels();
    WorldPixels(const WorldPixels&) = delete;
    WorldPixels& operator=(const WorldPixels&) = delete;

    explicit operator bool() const { return address != nullptr; }
    void* base() const { return address; }
    std::size_t rowBytes() const { return bytesPerRow; }

  private:
    PixMap** map;
    bool locked = false;
    void* address = nullptr;
    std::size_t bytesPerRow = 0;
};

} // namespace bridge
