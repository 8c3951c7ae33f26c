// CIImageKaz: images rendered into pictures, NSImages and CGImages, and their geometry. Every method of this
// class runs in the frame of a factory, prepared().
#include "CIImageKaz.h"

#include <bridge/dictionaries.h>
#include <bridge/owned.h>
#include <bridge/pictures.h>
#include <bridge/worlds.h>

#import <AppKit/AppKit.h>

#include <algorithm>
#include <limits>

namespace coreimage::rendering {
namespace {

using bridge::Owned;

CIImage* image(REALobject self) { return nativeHandle<CIImage*>(self); }

// Truncated towards zero, and limited for endless images.
std::int32_t wholePixels(CGFloat size) {
    constexpr double kMost = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::clamp(static_cast<double>(size), -kMost, kMost));
}

NSSize sizeOf(CGRect extent) { return NSMakeSize(extent.size.width, extent.size.height); }

// Draws the whole image into the bitmap, scaled to fill it; true when it was drawn.
bool drawFilling(CIImage* image, CGContextRef bitmap, CGRect extent, std::int32_t width, std::int32_t height,
                 CGColorSpaceRef outputSpace, bool useSoftwareRenderer) {
    NSMutableDictionary* options = [NSMutableDictionary dictionaryWithCapacity:3];
    if (useSoftwareRenderer) [options setObject:[NSNumber numberWithBool:YES] forKey:@"software_renderer"];
    [options setObject:(id)outputSpace forKey:@"output_color_space"];
    CIContext* context = [CIContext contextWithCGContext:bitmap options:options];
    if (!context) return false;
    [context drawImage:image
                inRect:CGRectMake(0, 0, static_cast<CGFloat>(width), static_cast<CGFloat>(height))
              fromRect:extent];
    [context clearCaches];
    [context reclaimResources];
    return true;
}

// Renders into a picture whose description is locked; false when the description is of no known kind.
bool drawIntoPicture(CIImage* image, const bridge::LockedDescription& description, CGRect extent,
                     std::int32_t width, std::int32_t height, CGColorSpaceRef outputSpace,
                     bool useSoftwareRenderer) {
    if (CGContextRef bitmap = description.context())
        return drawFilling(image, bitmap, extent, width, height, outputSpace, useSoftwareRenderer);
    if (void* world = description.world()) {
        bridge::WorldPixels pixels(world);
        if (!pixels) return false;
        Owned<CGContextRef> bitmap(CGBitmapContextCreate(pixels.base(), static_cast<size_t>(width),
                                                         static_cast<size_t>(height), 8, pixels.rowBytes(),
                                                         outputSpace, kCGImageAlphaPremultipliedFirst));
        return bitmap &&
               drawFilling(image, bitmap.get(), extent, width, height, outputSpace, useSoftwareRenderer);
    }
    return false;
}

void unlockFocus(NSImage* image) { [image unlockFocus]; }

// Draws the image into what has the focus; true when it was drawn.
bool drawIntoFocus(CIImage* image, CGRect extent, bool useSoftwareRenderer) {
    void* port = [[NSGraphicsContext currentContext] graphicsPort];
    if (!port) return false;
    NSDictionary* options = nil;
    if (useSoftwareRenderer)
        options = [NSDictionary dictionaryWithObject:[NSNumber numberWithBool:YES]
                                              forKey:@"software_renderer"];
    CIContext* context = [CIContext contextWithCGContext:static_cast<CGContextRef>(port) options:options];
    if (!context) return false;
    [context drawImage:image atPoint:CGPointMake(0, 0) fromRect:extent];
    return true;
}

// Both forms of CreateCGImage: `render` renders with a context on a scratch bitmap of the source's size.
template <class Render>
REALobject createCGImageWith(REALobject self, REALobject rect, CGColorSpaceRef bitmapSpace, Render&& render) {
    CGRect source = sourceRectangle(rect, [image(self) extent]);
    size_t width = static_cast<size_t>(wholePixels(source.size.width));
    size_t height = static_cast<size_t>(wholePixels(source.size.height));
    Owned<CGContextRef> bitmap(CGBitmapContextCreate(nullptr, width, height, 8, width * 4, bitmapSpace,
                                                     kCGImageAlphaPremultipliedLast));
    if (!bitmap) return nullptr;
    CIContext* context = [CIContext contextWithCGContext:bitmap.get() options:nil];
    Owned<CGImageRef> result(render(context, source));
    return newCGImage(result.get());
}

} // namespace

REALobject createCGImage(REALobject self, REALobject rect) {
    return prepared([&]() -> REALobject {
        if (!image(self)) return nullptr;
        Owned<CGColorSpaceRef> deviceRGB(CGColorSpaceCreateDeviceRGB());
        if (!deviceRGB) return nullptr;
        return createCGImageWith(self, rect, deviceRGB.get(), [&](CIContext* context, CGRect source) {
            return [context createCGImage:image(self) fromRect:source];
        });
    });
}

REALobject createCGImageInColorSpace(REALobject self, REALobject rect, REALobject colorSpace) {
    return prepared([&]() -> REALobject {
        if (!image(self)) return nullptr;
        CGColorSpaceRef wanted = nativeHandle<CGColorSpaceRef>(colorSpace);
        Owned<CGColorSpaceRef> bitmapSpace(wanted ? CGColorSpaceRetain(wanted)
                                                  : CGColorSpaceCreateDeviceRGB());
        if (!bitmapSpace) return nullptr;
        return createCGImageWith(self, rect, bitmapSpace.get(), [&](CIContext* context, CGRect source) {
            return [context createCGImage:image(self)
                                 fromRect:source
                                   format:kCIFormatARGB8
                               colorSpace:wanted];
        });
    });
}

REALobject asNSImage(REALobject self) {
    return prepared([&]() -> REALobject {
        if (!image(self)) return nullptr;
        NSImage* result = [[[NSImage alloc] initWithSize:sizeOf([image(self) extent])] autorelease];
        [result addRepresentation:[NSCIImageRep imageRepWithCIImage:image(self)]];
        return NewNSImageKaz(result);
    });
}

REALobject renderNSImage(REALobject self, bool useSoftwareRenderer) {
    return prepared([&]() -> REALobject {
        if (!image(self)) return nullptr;
        CGRect extent = [image(self) extent];
        NSImage* result = [[[NSImage alloc] initWithSize:sizeOf(extent)] autorelease];
        [result lockFocus];
        host::Entry<NSImage*, unlockFocus> focus(result);
        if (!drawIntoFocus(image(self), extent, useSoftwareRenderer)) return nullptr;
        unlockFocus(focus.release());
        return NewNSImageKaz(result);
    });
}

REALpicture renderPicture(REALobject self, std::int32_t width, std::int32_t height,
                          bool useSoftwareRenderer) {
    return prepared([&]() -> REALpicture {
        if (!image(self)) return nullptr;
        CGRect extent = [image(self) extent];
        if (width < 1) width = wholePixels(extent.size.width);
        if (height < 1) height = wholePixels(extent.size.height);
        if (width < 1 || height < 1) return nullptr;

        Owned<CGColorSpaceRef> deviceRGB(CGColorSpaceCreateDeviceRGB());
        if (!deviceRGB) return nullptr;
        host::Held picture(REALNewPicture(width, height, 32));
        if (!picture) return nullptr;

        bool drawn = false;
        if (bridge::LockedDescription description{picture.get()})
            // Guarded by itself, so that the description and the picture are given back after the exception
            // is raised.
            drawn = guarded([&] {
                return drawIntoPicture(image(self), description, extent, width, height, deviceRGB.get(),
                                       useSoftwareRenderer);
            });
        if (!drawn) return nullptr;
        REALPictureClearCache(picture.get());
        return picture.release();
    });
}

std::int32_t height(REALobject self) {
    return prepared([&] { return wholePixels([image(self) extent].size.height); });
}

std::int32_t width(REALobject self) {
    return prepared([&] { return wholePixels([image(self) extent].size.width); });
}

REALstring url(REALobject self) {
    return prepared([&] { return CFString2RBString((CFStringRef)[[image(self) url] absoluteString]); });
}

REALobject colorSpace(REALobject self) {
    return prepared([&] { return newColorSpace([image(self) colorSpace]); });
}

REALobject properties(REALobject self) {
    return prepared([&] { return NSDictionaryRB([image(self) properties]); });
}

REALobject extent(REALobject self) {
    return prepared([&]() -> REALobject {
        if (!image(self)) return nullptr;
        return newRectangle([image(self) extent]);
    });
}

REALobject definition(REALobject self) {
    return prepared([&] { return newFilterShape([image(self) definition]); });
}

REALobject imageByApplyingTransform(REALobject self, REALobject transform) {
    return wrappedResult(kImage, [&]() -> CIImage* {
        NSAffineTransform* native = nativeHandle<NSAffineTransform*>(transform);
        if (!image(self) || !native) return nil;
        NSAffineTransformStruct m = [native transformStruct];
        return [image(self)
            imageByApplyingTransform:CGAffineTransformMake(m.m11, m.m12, m.m21, m.m22, m.tX, m.tY)];
    });
}

REALobject imageByCroppingToRect(REALobject self, REALobject rect) {
    return wrappedResult(kImage, [&]() -> CIImage* {
        if (!image(self)) return nil;
        return [image(self) imageByCroppingToRect:rectangleOf(rect)];
    });
}

} // namespace coreimage::rendering
