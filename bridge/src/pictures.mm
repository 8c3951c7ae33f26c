#include <bridge/pictures.h>

#include <Carbon/Carbon.h>

#include <cstring>

namespace {

using bridge::Owned;

constexpr double kFailedLocksNeedNoUnlock = 2012.0;

REALobject object(REALpicture picture) { return reinterpret_cast<REALobject>(picture); }

// A picture that is unlocked at the end of its scope.
struct LockedPicture {
    REALpicture picture;
    explicit LockedPicture(REALpicture picture) : picture(picture) {}
    ~LockedPicture() {
        if (picture) REALUnlockObject(object(picture));
    }
    LockedPicture(const LockedPicture&) = delete;
    LockedPicture& operator=(const LockedPicture&) = delete;
    explicit operator bool() const { return picture != nullptr; }
};

// A picture's description, locked for a scope. A lock that fails must still be undone on older hosts.
class Description {
  public:
    Description(REALpicture picture, std::int32_t kind) : picture(picture) {
        locked = REALLockPictureDescription(picture, &record, kind);
        if (!locked) bridge::undoFailedLock(picture);
    }
    ~Description() {
        if (locked) REALUnlockPictureDescription(picture);
    }
    Description(const Description&) = delete;
    Description& operator=(const Description&) = delete;

    explicit operator bool() const { return locked; }

    // A new image of the bitmap context, owned by the caller; null when another kind was delivered.
    CGImageRef createImage() const {
        if (!locked || record.kind != kREALPictureCGContext) return nullptr;
        return CGBitmapContextCreateImage(static_cast<CGContextRef>(record.handle));
    }

    // The handle of another kind points at something that is no pixel buffer and may be shorter, so that
    // not even its format can be read.
    const REALpixelBuffer* pixels() const {
        return locked && record.kind == kREALPicturePixelBuffer
                   ? static_cast<const REALpixelBuffer*>(record.handle)
                   : nullptr;
    }

  private:
    REALpicture picture;
    REALpictureDescription record = {};
    bool locked;
};

struct Size {
    std::int32_t width = 0, height = 0;
};

// A failed read counts as 0.
Size sizeOf(REALpicture picture) {
    Size size;
    REALGetPropValueInt32(object(picture), "Width", &size.width);
    REALGetPropValueInt32(object(picture), "Height", &size.height);
    return size;
}

void drawWhole(REALpicture destination, REALpicture source, Size size) {
    GraphicsDrawPicture(destination, source, 0, 0, size.width, size.height, 0, 0, size.width, size.height);
}

bool isSystemWithPictureCopies() {
    SInt32 major = 0, minor = 0;
    return Gestalt(gestaltSystemVersionMajor, &major) == noErr &&
           Gestalt(gestaltSystemVersionMinor, &minor) == noErr && major >= 10 && minor >= 7;
}

// The host's image of a copy of the picture and its mask; null when the host makes none.
CGImageRef createImageByHostCopy(REALpicture picture, REALpicture mask) {
    Size size = sizeOf(picture);
    LockedPicture copy(REALNewPicture(size.width, size.height, 32));
    if (!copy) return nullptr;
    drawWhole(copy.picture, picture, size);
    if (LockedPicture copyMask{REALGetPictureMask(copy.picture, true)})
        drawWhole(copyMask.picture, mask, size);
    return static_cast<CGImageRef>(REALCopyPictureCGImage(copy.picture));
}

// Complements the bytes of a gray bitmap; what lies beyond the width in each row stays.
void invert(CGContextRef gray) {
    std::uint8_t* row = static_cast<std::uint8_t*>(CGBitmapContextGetData(gray));
    std::size_t width = CGBitmapContextGetWidth(gray);
    for (std::size_t y = 0; y < CGBitmapContextGetHeight(gray);
         ++y, row += CGBitmapContextGetBytesPerRow(gray))
        for (std::size_t x = 0; x < width; ++x) row[x] = static_cast<std::uint8_t>(~row[x]);
}

// The image in gray, each byte complemented; null when a step fails.
CGImageRef createInvertedGrayImage(CGImageRef image) {
    std::size_t width = CGImageGetWidth(image), height = CGImageGetHeight(image);
    Owned<CGColorSpaceRef> graySpace(CGColorSpaceCreateDeviceGray());
    if (!graySpace) return nullptr;
    Owned<CGContextRef> gray(
        CGBitmapContextCreate(nullptr, width, height, 8, 0, graySpace.get(), kCGImageAlphaNone));
    if (!gray) return nullptr;
    CGContextDrawImage(gray.get(),
                       CGRectMake(0, 0, static_cast<CGFloat>(width), static_cast<CGFloat>(height)), image);
    invert(gray.get());
    return CGBitmapContextCreateImage(gray.get());
}

CGImageRef createImageByDescription(REALpicture picture, REALpicture mask) {
    Description description(picture, kREALPictureCGContext);
    Owned<CGImageRef> image(description.createImage());
    if (!image || !mask) return image.release();
    Description maskDescription(mask, kREALPictureCGContext);
    Owned<CGImageRef> maskImage(maskDescription.createImage());
    Owned<CGImageRef> gray(maskImage ? createInvertedGrayImage(maskImage.get()) : nullptr);
    if (!gray) return image.release();
    // Dark is opaque. From here on there is no way back to the image alone: null stays null.
    return CGImageCreateWithMask(image.get(), gray.get());
}

bool copyable(const REALpixelBuffer* source, const REALpixelBuffer* destination) {
    return source && destination && source->format == 0 && destination->format == 0 &&
           source->width == destination->width && source->height == destination->height &&
           source->height >= 1 && source->rows && destination->rows;
}

void copyRows(REALpicture destination, REALpicture source) {
    {
        Description from(source, kREALPicturePixelBuffer);
        if (!from) return;
        Description to(destination, kREALPicturePixelBuffer);
        if (to && copyable(from.pixels(), to.pixels()))
            for (std::int32_t y = 0; y < from.pixels()->height; ++y)
                std::memcpy(to.pixels()->rows[y], from.pixels()->rows[y],
                            static_cast<std::size_t>(from.pixels()->width) * 4);
    }
    REALPictureClearCache(destination);
}

// --- QuickDraw, looked up at run time because not every system has it --------------------------------------

CFBundleRef frameworkBundle() {
    static CFBundleRef bundle = nullptr; // kept for good once it is loaded
    if (!bundle) bundle = LoadFrameworkBundle();
    return bundle;
}

template <class Function>
class FrameworkFunction;

// A function of the bundle, looked up on first use. While it cannot be found a call answers 0 or null, and
// the next call looks again.
template <class Result, class... Arguments>
class FrameworkFunction<Result(Arguments...)> {
  public:
    explicit constexpr FrameworkFunction(const char* name) : name(name) {}

    Result operator()(Arguments... arguments) {
        if (Function function = resolve()) return function(arguments...);
        return Result();
    }

  private:
    using Function = Result (*)(Arguments...);

    Function resolve() {
        if (cached || !frameworkBundle()) return cached;
        Owned<CFStringRef> key(CFStringCreateWithCString(nullptr, name, kCFStringEncodingASCII));
        cached = reinterpret_cast<Function>(CFBundleGetFunctionPointerForName(frameworkBundle(), key.get()));
        return cached;
    }

    const char* name;
    Function cached = nullptr;
};

constinit FrameworkFunction<PixMap**(void* world)> getGWorldPixMap{"GetGWorldPixMap"};
constinit FrameworkFunction<SInt16(PixMap**)> getPixDepth{"GetPixDepth"};
constinit FrameworkFunction<Boolean(PixMap**)> lockPixels{"LockPixels"};
constinit FrameworkFunction<char*(PixMap**)> getPixBaseAddr{"GetPixBaseAddr"};
constinit FrameworkFunction<SInt32(PixMap**)> getPixRowBytes{"GetPixRowBytes"};
constinit FrameworkFunction<void(PixMap**)> unlockPixels{"UnlockPixels"};

} // namespace

CGImageRef CreateCGImageInternal(REALpicture picture, REALpicture mask) {
    if (!picture) return nullptr;
    if (isSystemWithPictureCopies())
        if (CGImageRef image = createImageByHostCopy(picture, mask)) return image;
    return createImageByDescription(picture, mask);
}

void GraphicsDrawPicture(REALpicture destination, REALpicture source, int, int, int w, int h, int, int,
                         int sw, int sh) {
    struct Graphics {
        REALobject object;
        ~Graphics() {
            if (object) REALUnlockObject(object);
        }
    } graphics = {REALGetPictureGraphics(destination)};

    if (graphics.object && source) {
        using Draw = void (*)(REALobject, REALpicture, std::int32_t, std::int32_t, std::int32_t, std::int32_t,
                              std::int32_t, std::int32_t, std::int32_t, std::int32_t);
        if (auto draw = reinterpret_cast<Draw>(REALLoadObjectMethod(
                graphics.object,
                "DrawPicture(Image as Picture, x as Integer, y as Integer, w as Integer, h as Integer, "
                "sx as Integer = 0, sy as Integer = 0, sw as Integer = -10000, sh as Integer = -10000)"))) {
            draw(graphics.object, source, 0, 0, w, h, 0, 0, sw, sh);
            return;
        }
        // Older hosts are asked for their drawing entry, whose answer has no use.
        if (rbversion_rbversion < kFailedLocksNeedNoUnlock) gResolver("RuntimeGraphicsDrawPicture");
    }
    if (source && destination && w == sw && h == sh) copyRows(destination, source);
}

void bridge::undoFailedLock(REALpicture picture) {
    if (rbversion_rbversion < kFailedLocksNeedNoUnlock) REALUnlockPictureDescription(picture);
}

CGImageRef bridge::copyCGImage(REALpicture picture) {
    if (CGImageRef image = static_cast<CGImageRef>(REALCopyPictureCGImage(picture))) return image;

    LockedPicture mask(REALGetPictureMask(picture, true));
    if (CGImageRef image = CreateCGImageInternal(picture, mask.picture)) return image;

    Size size = sizeOf(picture);
    if (size.width < 1 || size.height < 1) return nullptr;
    LockedPicture copy(REALNewPicture(size.width, size.height, 32));
    if (!copy) return nullptr;
    drawWhole(copy.picture, picture, size);
    LockedPicture copyMask(mask ? REALGetPictureMask(copy.picture, true) : nullptr);
    if (copyMask) drawWhole(copyMask.picture, mask.picture, size);
    if (CGImageRef image = static_cast<CGImageRef>(REALCopyPictureCGImage(copy.picture))) return image;
    return CreateCGImageInternal(copy.picture, copyMask.picture);
}

bridge::WorldPixels::WorldPixels(void* world) : map(getGWorldPixMap(world)) {
    if (!map || getPixDepth(map) != 32) return;
    locked = lockPixels(map);
    if (!locked) return;
    address = getPixBaseAddr(map);
    bytesPerRow = static_cast<std::size_t>(getPixRowBytes(map));
}

bridge::WorldPixels::~WorldPixels() {
    if (locked) unlockPixels(map);
}

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
