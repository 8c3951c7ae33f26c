// Host pictures against Core Graphics images.
#pragma once

#include <CoreGraphics/CoreGraphics.h>
#include <bridge/owned.h>
#include <hostapi/handles.h>

// A new image of a picture with its mask applied, owned by the caller; null when the host shows no pixels.
// The mask may be null.
CGImageRef CreateCGImageInternal(REALpicture picture, REALpicture mask);

// Draws `source` into `destination`, both from their origins: through the host's own drawing method or, where
// that is missing and the size stays the same, by copying rows.
void GraphicsDrawPicture(REALpicture destination, REALpicture source, int x, int y, int w, int h, int sx,
                         int sy, int sw, int sh);

namespace bridge {

// The picture's image. Tries the host's own copy, then the picture's description, then a copy of the picture.
// Owned by the caller; null when all fail.
CGImageRef copyCGImage(REALpicture picture);

// A picture's description, locked for a scope, in the kind that the host prefers or in a given kind. False
// when the lock failed; hosts before 2012.0 expect even a failed lock to be undone.
class LockedDescription {
  public:
    explicit LockedDescription(REALpicture picture);
    LockedDescription(REALpicture picture, std::int32_t kind);

    explicit operator bool() const { return bool(lock); }

    // The handle, null when the description is of another kind.
    CGContextRef context() const;
    void* world() const; // QuickDraw's

    // The handle whatever the kind; its format code tells whether it is a pixel buffer.
    const REALpixelBuffer* pixels() const;

    // Leaves the description locked; what it held stays valid.
    void release() { lock.release(); }

  private:
    static void unlock(REALpicture picture);

    REALpictureDescription record = {};
    host::Entry<REALpicture, unlock> lock;
};

} // namespace bridge
