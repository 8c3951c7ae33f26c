// QuickDraw's off-screen worlds, in which old hosts keep pictures.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <hostapi/ledger.h>

#include <cstddef>

struct PixMap; // QuickDraw's

// The system's "ApplicationServices.framework", loaded; owned by the caller, null when it cannot be loaded.
CFBundleRef LoadFrameworkBundle();

namespace bridge {

// The pixels of a world, 4 bytes each, locked for a scope. False when the world has another depth or does not
// show its pixels, and on a system without QuickDraw.
class WorldPixels {
  public:
    explicit WorldPixels(void* world);

    explicit operator bool() const { return address != nullptr; }
    void* base() const { return address; }
    std::size_t rowBytes() const { return bytesPerRow; }

  private:
    static void unlock(PixMap** map);

    host::Entry<PixMap**, unlock> locked;
    void* address = nullptr;
    std::size_t bytesPerRow = 0;
};

} // namespace bridge
