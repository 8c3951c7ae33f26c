// CIContextKaz: draws images into a CGContext or a picture, or renders them into CGImages.
#include "wrapper.h"

#include <bridge/pictures.h>

namespace coreimage {
namespace {

struct ContextData {
    CIContext* context;
    REALpicture picture;
    CGContextRef cgContext;
    REALobject cgContextObject;
};
static_assert(sizeof(ContextData) == 16);

ContextData& data(REALobject self) { return instanceData<ContextData>(self); }

CIImage* imageOf(REALobject image) { return nativeHandle<CIImage*>(image); }

NSDictionary* contextOptions(REALobject outputColorSpace, REALobject workingColorSpace,
                             bool useSoftwareRenderer) {
    NSMutableDictionary* options = [NSMutableDictionary dictionaryWithCapacity:3];
    [options setObject:[NSNumber numberWithBool:useSoftwareRenderer] forKey:@"software_renderer"];
    if (id space = nativeHandle(outputColorSpace)) [options setObject:space forKey:@"output_color_space"];
    if (id space = nativeHandle(workingColorSpace)) [options setObject:space forKey:@"working_color_space"];
    return options;
}

// --- construction -----------------------------------------------------------------------------------------

// `options` is called inside the frame and may return nil.
template <class Options>
void initWithCGContextAnd(REALobject self, REALobject cgContext, Options&& options) {
    CGContextRef native = nativeHandle<CGContextRef>(cgContext);
    if (raisesWhenNull(native, "CGContext is nil")) return;
    construct(self, [&]() -> CIContext* {
        CIContext* context = [CIContext contextWithCGContext:native options:options()];
        if (!context) return nil;
        data(self).cgContext = CGContextRetain(native);
        data(self).cgContextObject = host::locked(cgContext);
        return [context retain];
    });
}

void initWithCGContextAndOptions(REALobject self, REALobject cgContext, REALobject outputColorSpace,
                                 REALobject workingColorSpace, bool useSoftwareRenderer) {
    initWithCGContextAnd(self, cgContext, [&] {
        return contextOptions(outputColorSpace, workingColorSpace, useSoftwareRenderer);
    });
}

void initWithCGContext(REALobject self, REALobject cgContext) {
    initWithCGContextAnd(self, cgContext, [] { return static_cast<NSDictionary*>(nil); });
}

// Leaves the picture's description locked for the context's life. A second call is not refused.
void initWithPicture(REALobject self, REALpicture picture) {
    if (raisesWhenNull(picture, "Picture is nil")) return;
    prepared([&] {
        bridge::LockedDescription description(picture, kREALPictureCGContext);
        CGContextRef native = description.context();
        description.release();
        if (!native) {
            RaiseException(bridge::kUnsupportedOperation, "Only supported on Mac OS X in Cocoa target.");
            return;
        }
        CIContext* context = [CIContext contextWithCGContext:native options:nil];
        if (!context) return;
        data(self).picture = host::locked(picture);
        data(self).cgContext = CGContextRetain(native);
        data(self).cgContextObject = newUnregistered("CGContextKaz", native);
        adopt(self, [context retain]);
    });
}

void destructor(REALobject self) {
    ContextData& fields = data(self);
    guarded([&] {
        if (fields.cgContext) CGContextRelease(fields.cgContext);
        fields.cgContext = nullptr;
        host::unlock(std::exchange(fields.picture, nullptr));
        host::unlock(std::exchange(fields.cgContextObject, nullptr));
    });
}

// --- drawing ----------------------------------------------------------------------------------------------

void flush(REALobject self) {
    guarded([&] {
        if (data(self).cgContext) CGContextFlush(data(self).cgContext);
        if (data(self).picture) REALPictureClearCache(data(self).picture);
    });
}

// The part of the image to draw: all of it unless the rectangle is at least 1 wide or high.
CGRect drawnRectangle(CIImage* image, REALobject rect) {
    CGRect source = rectangleOf(rect);
    return source.size.width < 1 && source.size.height < 1 ? [image extent] : source;
}

void drawImagePoint(REALobject self, REALobject image, REALobject point, REALobject sourceRect) {
    guardedInPool([&] {
        if (!imageOf(image) || !data(self).context) return;
        PointFields at = {};
        if (point) at = instanceData<PointFields>(point);
        [data(self).context drawImage:imageOf(image)
                              atPoint:CGPointMake(static_cast<CGFloat>(at.x), static_cast<CGFloat>(at.y))
                             fromRect:drawnRectangle(imageOf(image), sourceRect)];
    });
}

void drawImageRect(REALobject self, REALobject image, REALobject destRect, REALobject sourceRect) {
    guardedInPool([&] {
        if (!imageOf(image) || !data(self).context) return;
        [data(self).context drawImage:imageOf(image)
                               inRect:rectangleOf(destRect)
                             fromRect:drawnRectangle(imageOf(image), sourceRect)];
    });
}

void drawImage(REALobject self, REALobject image) {
    guardedInPool([&] {
        if (!imageOf(image) || !data(self).context) return;
        CGRect extent = [imageOf(image) extent];
        [data(self).context drawImage:imageOf(image) inRect:extent fromRect:extent];
    });
}

// --- rendering --------------------------------------------------------------------------------------------

// The origin is the rectangle's; each size below 1 is taken from the extent.
template <class Render>
REALobject createCGImageWith(REALobject self, REALobject image, REALobject rect, Render&& render) {
    return guardedInPool([&]() -> REALobject {
        if (!imageOf(image) || !data(self).context) return nullptr;
        bridge::Owned<CGImageRef> result(
            render(imageOf(image), sourceRectangle(rect, [imageOf(image) extent])));
        return newCGImage(result.get());
    });
}

REALobject createCGImage(REALobject self, REALobject image, REALobject rect) {
    return createCGImageWith(self, image, rect, [&](CIImage* native, CGRect source) {
        return [data(self).context createCGImage:native fromRect:source];
    });
}

REALobject createCGImageInColorSpace(REALobject self, REALobject image, REALobject rect,
                                     REALobject colorSpace) {
    return createCGImageWith(self, image, rect, [&](CIImage* native, CGRect source) {
        return [data(self).context createCGImage:native
                                        fromRect:source
                                          format:kCIFormatARGB8
                                      colorSpace:nativeHandle<CGColorSpaceRef>(colorSpace)];
    });
}

void reclaimResources(REALobject self) {
    guardedInPool([&] { [data(self).context reclaimResources]; });
}

void clearCaches(REALobject self) {
    guardedInPool([&] { [data(self).context clearCaches]; });
}

// --- tables -----------------------------------------------------------------------------------------------

REALproperty properties[] = {
    handleProperty(),
    property("Description", "String", description),
    host::settableField("Picture", "Picture", offsetof(ContextData, picture), host::kConsoleSafe | 2),
    host::settableField("CGContext", "CGContextKaz", offsetof(ContextData, cgContextObject)),
};

REALmethodDefinition methods[] = {
    method("Destructor", destructor),
    method("Flush", flush),
    method("CreateCGImage(image as CIImageKaz, r as CGRectKaz = nil) as CGImageKaz", createCGImage),
    method("CreateCGImage(image as CIImageKaz, r as CGRectKaz, ColorSpace as CGColorSpaceKaz) as CGImageKaz",
           createCGImageInColorSpace),
    constructorWithHandle<kContext>(),
    method("ReclaimResources", reclaimResources),
    method("ClearCaches", clearCaches),
    method("Constructor(cgcontext as CGContextKaz, OutputColorSpace as CGColorSpaceKaz, WorkingColorSpace as "
           "CGColorSpaceKaz, UseSoftwareRenderer as Boolean)",
           initWithCGContextAndOptions),
    method("Constructor(cgcontext as CGContextKaz)", initWithCGContext),
    method("Constructor(Pic as Picture)", initWithPicture, host::kConsoleSafe),
    method("DrawImagePoint(ciImage as CIImageKaz, DestPoint as CGPointKaz, SourceRect as CGRectKaz = nil)",
           drawImagePoint),
    method("DrawImageRect(ciImage as CIImageKaz, DestRect as CGRectKaz, SourceRect as CGRectKaz = nil)",
           drawImageRect),
    method("DrawImage(ciImage as CIImageKaz)", drawImage),
};

void CIContextConstructor(REALobject self) { constructWrapper(self); }
void CIContextDestructor(REALobject self) { destroyWrapper(self); }

} // namespace

REALclassDefinition CIContextKazClass = classDefinition({.name = "CIContextKaz",
                                                         .dataSize = sizeof(ContextData),
                                                         .constructor = CIContextConstructor,
                                                         .destructor = CIContextDestructor},
                                                        properties, methods);

// --- global functions -------------------------------------------------------------------------------------

REALobject contextWithCGContextAndOptions(REALobject cgContext, REALobject outputColorSpace,
                                          REALobject workingColorSpace, bool useSoftwareRenderer) {
    CGContextRef native = nativeHandle<CGContextRef>(cgContext);
    if (!native) return nullptr;
    return wrappedResult(kContext, [&] {
        return [CIContext
            contextWithCGContext:native
                         options:contextOptions(outputColorSpace, workingColorSpace, useSoftwareRenderer)];
    });
}

REALobject contextWithCGContext(REALobject cgContext) {
    CGContextRef native = nativeHandle<CGContextRef>(cgContext);
    if (!native) return nullptr;
    return wrappedResult(kContext, [&] { return [CIContext contextWithCGContext:native options:nil]; });
}

} // namespace coreimage
