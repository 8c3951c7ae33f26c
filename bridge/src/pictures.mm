// Host pictures against Core Graphics images.
#include <bridge/pictures.h>

#include <Carbon/Carbon.h>

#include <cstring>

namespace {

using bridge::LockedDescription;
using bridge::Owned;

constexpr double kFailedLocksNeedNoUnlock = 2012.0;

struct Size {
    std::int32_t width, height;
};

Size sizeOf(REALpicture picture) {
    return {host::propertyValue(REALGetPropValueInt32, host::asObject(picture), "Width"),
            host::propertyValue(REALGetPropValueInt32, host::asObject(picture), "Height")};
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
    host::Held copy(REALNewPicture(size.width, size.height, 32));
    if (!copy) return nullptr;
    drawWhole(copy.get(), picture, size);
    if (host::Held copyMask{REALGetPictureMask(copy.get(), true)}) drawWhole(copyMask.get(), mask, size);
    return static_cast<CGImageRef>(REALCopyPictureCGImage(copy.get()));
}

// Complements the bytes of a gray bitmap; the padding of each row stays.
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

// A new image of the bitmap context; null when the description is of another kind.
CGImageRef createImage(const LockedDescription& description) {
    return description.context() ? CGBitmapContextCreateImage(description.context()) : nullptr;
}

CGImageRef createImageByDescription(REALpicture picture, REALpicture mask) {
    LockedDescription description(picture, kREALPictureCGContext);
    Owned<CGImageRef> image(createImage(description));
    if (!image || !mask) return image.release();
    LockedDescription maskDescription(mask, kREALPictureCGContext);
    Owned<CGImageRef> maskImage(createImage(maskDescription));
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

// The picture, or null after undoing its failed lock.
REALpicture lockedOrNull(REALpicture picture, bool locked) {
    if (locked) return picture;
    if (rbversion_rbversion < kFailedLocksNeedNoUnlock) REALUnlockPictureDescription(picture);
    return nullptr;
}

void copyRows(REALpicture destination, REALpicture source) {
    {
        LockedDescription from(source, kREALPicturePixelBuffer);
        if (!from) return;
        LockedDescription to(destination, kREALPicturePixelBuffer);
        if (to && copyable(from.pixels(), to.pixels()))
            for (std::int32_t y = 0; y < from.pixels()->height; ++y)
                std::memcpy(to.pixels()->rows[y], from.pixels()->rows[y],
                            static_cast<std::size_t>(from.pixels()->width) * 4);
    }
    REALPictureClearCache(destination);
}

} // namespace

CGImageRef CreateCGImageInternal(REALpicture picture, REALpicture mask) {
    if (!picture) return nullptr;
    if (isSystemWithPictureCopies())
        if (CGImageRef image = createImageByHostCopy(picture, mask)) return image;
    return createImageByDescription(picture, mask);
}

void GraphicsDrawPicture(REALpicture destination, REALpicture source, int, int, int w, int h, int, int,
                         int sw, int sh) {
    host::Held graphics(REALGetPictureGraphics(destination));
    if (graphics && source) {
        using Draw = void (*)(REALobject, REALpicture, std::int32_t, std::int32_t, std::int32_t, std::int32_t,
                              std::int32_t, std::int32_t, std::int32_t, std::int32_t);
        if (auto draw = reinterpret_cast<Draw>(REALLoadObjectMethod(
                graphics.get(),
                "DrawPicture(Image as Picture, x as Integer, y as Integer, w as Integer, h as Integer, "
                "sx as Integer = 0, sy as Integer = 0, sw as Integer = -10000, sh as Integer = -10000)"))) {
            draw(graphics.get(), source, 0, 0, w, h, 0, 0, sw, sh);
            return;
        }
        // Older hosts expect to be asked for their drawing entry; it is not called.
        if (rbversion_rbversion < kFailedLocksNeedNoUnlock) gResolver("RuntimeGraphicsDrawPicture");
    }
    if (source && destination && w == sw && h == sh) copyRows(destination, source);
}

bridge::LockedDescription::LockedDescription(REALpicture picture)
    : lock(lockedOrNull(picture, REALLockPictureDescription(picture, &record))) {}

bridge::LockedDescription::LockedDescription(REALpicture picture, std::int32_t kind)
    : lock(lockedOrNull(picture, REALLockPictureDescription(picture, &record, kind))) {}

void bridge::LockedDescription::unlock(REALpicture picture) { REALUnlockPictureDescription(picture); }

CGContextRef bridge::LockedDescription::context() const {
    return lock && record.kind == kREALPictureCGContext ? static_cast<CGContextRef>(record.handle) : nullptr;
}

void* bridge::LockedDescription::world() const {
    return lock && record.kind == kREALPictureGWorld ? record.handle : nullptr;
}

// A pixel buffer shows by its format code, not by the kind that the host says it delivered.
const REALpixelBuffer* bridge::LockedDescription::pixels() const {
    return lock ? static_cast<const REALpixelBuffer*>(record.handle) : nullptr;
}

CGImageRef bridge::copyCGImage(REALpicture picture) {
    if (CGImageRef image = static_cast<CGImageRef>(REALCopyPictureCGImage(picture))) return image;

    host::Held mask(REALGetPictureMask(picture, true));
    if (CGImageRef image = CreateCGImageInternal(picture, mask.get())) return image;

    Size size = sizeOf(picture);
    if (size.width < 1 || size.height < 1) return nullptr;
    host::Held copy(REALNewPicture(size.width, size.height, 32));
    if (!copy) return nullptr;
    drawWhole(copy.get(), picture, size);
    host::Held copyMask(mask ? REALGetPictureMask(copy.get(), true) : nullptr);
    if (copyMask) drawWhole(copyMask.get(), mask.get(), size);
    if (CGImageRef image = static_cast<CGImageRef>(REALCopyPictureCGImage(copy.get()))) return image;
    return CreateCGImageInternal(copy.get(), copyMask.get());
}
