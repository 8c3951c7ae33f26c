// QuickDraw's off-screen worlds.
#include <bridge/owned.h>
#include <bridge/worlds.h>
#include <hostapi/lookup.h>

#include <Carbon/Carbon.h>

using bridge::Owned;

namespace {

// Looked up at run time, because not every system has QuickDraw.
void* findInQuickDraw(const char* name) {
    static constinit host::LookedUp<CFBundleRef> bundle; // kept for good
    CFBundleRef quickDraw = bundle.get(LoadFrameworkBundle);
    if (!quickDraw) return nullptr;
    Owned<CFStringRef> key(CFStringCreateWithCString(nullptr, name, kCFStringEncodingASCII));
    return CFBundleGetFunctionPointerForName(quickDraw, key.get());
}

template <class Function>
using QuickDrawFunction = host::LookedUpFunction<Function, findInQuickDraw>;

constinit QuickDrawFunction<PixMap** (*)(void* world)> getGWorldPixMap{"GetGWorldPixMap"};
constinit QuickDrawFunction<SInt16 (*)(PixMap**)> getPixDepth{"GetPixDepth"};
constinit QuickDrawFunction<Boolean (*)(PixMap**)> lockPixels{"LockPixels"};
constinit QuickDrawFunction<char* (*)(PixMap**)> getPixBaseAddr{"GetPixBaseAddr"};
constinit QuickDrawFunction<SInt32 (*)(PixMap**)> getPixRowBytes{"GetPixRowBytes"};
constinit QuickDrawFunction<void (*)(PixMap**)> unlockPixels{"UnlockPixels"};

// The map, locked; null when its pixels are not 4 bytes each or cannot be locked.
PixMap** lockedMap(PixMap** map) { return map && getPixDepth(map) == 32 && lockPixels(map) ? map : nullptr; }

} // namespace

bridge::WorldPixels::WorldPixels(void* world) : locked(lockedMap(getGWorldPixMap(world))) {
    if (!locked) return;
    address = getPixBaseAddr(locked.get());
    bytesPerRow = static_cast<std::size_t>(getPixRowBytes(locked.get()));
}

void bridge::WorldPixels::unlock(PixMap** map) { unlockPixels(map); }

CFBundleRef LoadFrameworkBundle() {
    constexpr SInt16 systemDisk = -32767;
    FSRef folder = {};
    if (FSFindFolder(systemDisk, kFrameworksFolderType, kCreateFolder, &folder) != noErr) return nullptr;
    Owned<CFURLRef> frameworks(CFURLCreateFromFSRef(kCFAllocatorDefault, &folder));
    if (!frameworks) return nullptr;
    Owned<CFURLRef> url(CFURLCreateCopyAppendingPathComponent(kCFAllocatorDefault, frameworks.get(),
                                                              CFSTR("ApplicationServices.framework"), false));
    if (!url) return nullptr;
    Owned<CFBundleRef> bundle(CFBundleCreate(kCFAllocatorDefault, url.get()));
    if (!bundle || !CFBundleLoadExecutable(bundle.get())) return nullptr;
    return bundle.release();
}
