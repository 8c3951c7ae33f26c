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
    /// The context as Core Image describes it, for debugging.
    ///     Print self.Description
    property("Description", "String", description),
    /// The picture it was made for, or Nil.
    ///     If self.Picture = Nil Then Print "It draws into a CGContextKaz."
    host::settableField("Picture", "Picture", offsetof(ContextData, picture), host::kConsoleSafe | 2),
    /// The Core Graphics context it draws into, or Nil for one made from a handle.
    ///     Print Str(self.CGContext.Width)
    host::settableField("CGContext", "CGContextKaz", offsetof(ContextData, cgContextObject)),
};

REALmethodDefinition methods[] = {
    /// Lets go of the picture or Core Graphics context; the host calls it when the object goes.
    ///     self = New CIContextKaz(canvas)
    method("Destructor", destructor),
    /// Finishes drawing into the Core Graphics context and refreshes the picture.
    ///     self.Flush
    method("Flush", flush),
    /// Renders a rectangle of the image, in the image's pixels; a width or height below 1 is taken from its
    /// extent. Nil for an empty image or context.
    ///     Print Str(self.CreateCGImage(photo, New CGRectKaz(0, 0, 100, 80)).Width)
    method("CreateCGImage(image as CIImageKaz, r as CGRectKaz = nil) as CGImageKaz", createCGImage),
    /// Renders a rectangle of the image into a colour space, 8 bits a component; a width or height below 1 is
    /// taken from its extent. Nil for an empty image or context.
    ///     Print Str(self.CreateCGImage(photo, Nil, CGColorSpaceKaz.SRGB).Width)
    method("CreateCGImage(image as CIImageKaz, r as CGRectKaz, ColorSpace as CGColorSpaceKaz) as CGImageKaz",
           createCGImageInColorSpace),
    constructorWithHandle<kContext>(),
    /// Frees what can be freed of the context's memory; what is needed again is made again.
    ///     self.ReclaimResources
    method("ReclaimResources", reclaimResources),
    /// Frees the results that the context keeps to render faster.
    ///     self.ClearCaches
    method("ClearCaches", clearCaches),
    /// Makes a context that draws into a Core Graphics context; Nil for a colour space takes the usual one,
    /// and True renders on the processor. Raises NilObjectException without a Core Graphics context.
    ///     Dim exact As New CIContextKaz(canvas, CGColorSpaceKaz.SRGB, CGColorSpaceKaz.GenericRGBLinear, _
    ///       True)
    method("Constructor(cgcontext as CGContextKaz, OutputColorSpace as CGColorSpaceKaz, WorkingColorSpace as "
           "CGColorSpaceKaz, UseSoftwareRenderer as Boolean)",
           initWithCGContextAndOptions),
    /// Makes a context that draws into a Core Graphics context. Raises NilObjectException without one.
    ///     Dim plain As New CIContextKaz(canvas)
    method("Constructor(cgcontext as CGContextKaz)", initWithCGContext),
    /// Makes a context that draws into a picture and keeps it in use. Raises NilObjectException for Nil, and
    /// UnsupportedOperationException where pictures have no Core Graphics context.
    ///     Dim framed As New CIContextKaz(New Picture(300, 200, 32))
    method("Constructor(Pic as Picture)", initWithPicture, host::kConsoleSafe),
    /// Draws the image unscaled with its lower left corner at the point; the source is a rectangle of the
    /// image in pixels, all of it when Nil. Does nothing for an empty image.
    ///     self.DrawImagePoint(photo, New CGPointKaz(20, 10))
    method("DrawImagePoint(ciImage as CIImageKaz, DestPoint as CGPointKaz, SourceRect as CGRectKaz = nil)",
           drawImagePoint),
    /// Draws the image scaled to fill the destination; the source is a rectangle of the image in pixels, all
    /// of it when Nil. Does nothing for an empty image.
    ///     self.DrawImageRect(photo, New CGRectKaz(0, 0, 300, 200))
    method("DrawImageRect(ciImage as CIImageKaz, DestRect as CGRectKaz, SourceRect as CGRectKaz = nil)",
           drawImageRect),
    /// Draws the whole image unscaled, where its extent lies. Does nothing for an empty image.
    ///     self.DrawImage(photo)
    method("DrawImage(ciImage as CIImageKaz)", drawImage),
};

void CIContextConstructor(REALobject self) { constructWrapper(self); }
void CIContextDestructor(REALobject self) { destroyWrapper(self); }

} // namespace

/// Draws images into a CGContextKaz or a Picture, or renders them into CGImageKaz objects.
///     Dim photo As CIImageKaz = NewCIImagewithFileKaz(SamplePhoto("coffee.png"))
///     Dim canvas As New CGContextKaz(300, 200)
///     Dim context As New CIContextKaz(canvas)
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
