// CIImageKaz: the recipe of a picture. This file makes images; CIImageKazRendering.mm renders and measures
// them, and CIImageLoading.mm loads them on a worker. Every method of this class runs in the frame of a
// factory, prepared().
#include "CIImageKaz.h"
#include "CIImageLoading.h"

#include <bridge/dictionaries.h>
#include <bridge/files.h>
#include <bridge/memoryblocks.h>
#include <bridge/owned.h>
#include <bridge/pictures.h>
#include <bridge/threads.h>

#import <AppKit/AppKit.h>

namespace coreimage {
namespace {

constexpr char kMemoryBlockIsNil[] = "Memoryblock is nil";
constexpr char kImageIsNil[] = "image is nil";

// --- what the Core Image calls take -----------------------------------------------------------------------

// Options that name a colour space for the image's data; empty, not nil, without one.
NSDictionary* optionsWithColorSpace(REALobject colorSpace) {
    NSMutableDictionary* options = [NSMutableDictionary dictionaryWithCapacity:3];
    if (id handle = nativeHandle(colorSpace)) [options setObject:handle forKey:@"color_space"];
    return options;
}

NSURL* urlOfString(REALstring text) {
    CFStringRef string = (CFStringRef)bridge::temporaryString(text);
    if (!string) return nil;
    return [(NSURL*)CFURLCreateWithString(kCFAllocatorDefault, string, nullptr) autorelease];
}

// The block's own bytes. The caller vouches for the length, and keeps the block alive and unchanged.
NSData* dataOnBlock(REALmemoryBlock block, std::int32_t length) {
    return [NSData dataWithBytesNoCopy:REALMemoryBlockGetPtr(block)
                                length:static_cast<NSUInteger>(length)
                          freeWhenDone:NO];
}

struct BitmapLayout {
    std::int32_t bytesPerRow, width, height, format;
    REALobject colorSpace;

    CGSize size() const { return CGSizeMake(static_cast<CGFloat>(width), static_cast<CGFloat>(height)); }
    CGColorSpaceRef space() const { return nativeHandle<CGColorSpaceRef>(colorSpace); }
};

CIImage* newBitmapImage(NSData* data, const BitmapLayout& layout) {
    return [[CIImage alloc] initWithBitmapData:data
                                   bytesPerRow:static_cast<size_t>(layout.bytesPerRow)
                                          size:layout.size()
                                        format:layout.format
                                    colorSpace:layout.space()];
}

CIImage* bitmapImage(NSData* data, const BitmapLayout& layout) {
    return [CIImage imageWithBitmapData:data
                            bytesPerRow:static_cast<size_t>(layout.bytesPerRow)
                                   size:layout.size()
                                 format:layout.format
                             colorSpace:layout.space()];
}

// --- constructors -----------------------------------------------------------------------------------------

void initWithCGImage(REALobject self, REALobject cgImage) {
    if (raisesWhenInitialized(self) || raisesWhenNull(nativeHandle(cgImage), kImageIsNil)) return;
    construct(self, [&] { return [[CIImage alloc] initWithCGImage:nativeHandle<CGImageRef>(cgImage)]; });
}

void initWithCGImageAndColorSpace(REALobject self, REALobject cgImage, REALobject colorSpace) {
    if (raisesWhenInitialized(self) || raisesWhenNull(nativeHandle(cgImage), kImageIsNil) ||
        raisesWhenNull(colorSpace, "CGColorSpace is nil"))
        return;
    construct(self, [&] {
        return [[CIImage alloc] initWithCGImage:nativeHandle<CGImageRef>(cgImage)
                                        options:optionsWithColorSpace(colorSpace)];
    });
}

void initWithFile(REALobject self, REALfolderItem file) {
    construct(self, [&] { return [[CIImage alloc] initWithContentsOfURL:NewNSURLfile(file)]; });
}

void initWithFileAndColorSpace(REALobject self, REALfolderItem file, REALobject colorSpace) {
    if (raisesWhenInitialized(self) || raisesWhenNull(file, "file is nil")) return;
    construct(self, [&] {
        return [[CIImage alloc] initWithContentsOfURL:NewNSURLfile(file)
                                              options:optionsWithColorSpace(colorSpace)];
    });
}

void initWithData(REALobject self, REALmemoryBlock data) {
    if (raisesWhenInitialized(self) || raisesWhenNull(data, kMemoryBlockIsNil)) return;
    construct(self, [&] { return [[CIImage alloc] initWithData:NewNSData(data)]; });
}

void initWithDataAndColorSpace(REALobject self, REALmemoryBlock data, REALobject colorSpace) {
    if (raisesWhenInitialized(self) || raisesWhenNull(data, kMemoryBlockIsNil)) return;
    construct(self, [&] {
        return [[CIImage alloc] initWithData:NewNSData(data) options:optionsWithColorSpace(colorSpace)];
    });
}

void initWithBitmapData(REALobject self, REALmemoryBlock data, std::int32_t bytesPerRow, std::int32_t width,
                        std::int32_t height, std::int32_t format, REALobject colorSpace) {
    if (raisesWhenInitialized(self) || raisesWhenNull(data, kMemoryBlockIsNil)) return;
    construct(self, [&] {
        return newBitmapImage(NewNSData(data), {bytesPerRow, width, height, format, colorSpace});
    });
}

void initWithBitmapMemory(REALobject self, REALmemoryBlock data, std::int32_t length,
                          std::int32_t bytesPerRow, std::int32_t width, std::int32_t height,
                          std::int32_t format, REALobject colorSpace) {
    if (raisesWhenInitialized(self) || raisesWhenNull(data, "data memoryblock is nil")) return;
    construct(self, [&] {
        return newBitmapImage(dataOnBlock(data, length), {bytesPerRow, width, height, format, colorSpace});
    });
}

// --- automatic adjustment ---------------------------------------------------------------------------------

// `find` returns the filters for the image, which may be nil. An array unless Cocoa raises.
template <class Find>
REALarray adjustmentsWith(REALobject self, Find&& find) {
    bridge::ensureFamily();
    return filledWithWrappers(
        REALCreateArray(kREALArrayObject, -1), [&] { return find(nativeHandle<CIImage*>(self)); },
        [](id filter) { return wrapped(kFilter, filter); });
}

REALarray autoAdjustmentFilters(REALobject self) {
    return adjustmentsWith(self, [](CIImage* image) { return [image autoAdjustmentFilters]; });
}

REALarray autoAdjustmentFiltersWithOptions(REALobject self, REALobject options) {
    return adjustmentsWith(self, [&](CIImage* image) {
        return [image autoAdjustmentFiltersWithOptions:NewNSDictionary(options)];
    });
}

// --- shared methods ---------------------------------------------------------------------------------------

// The option by the address of its variable, which is null on systems before 10.8.
REALstring optionName(NSString* const* name) {
    return prepared([&] { return name ? CFString2RBString((CFStringRef)*name) : nullptr; });
}

REALstring autoAdjustEnhance() { return optionName(&kCIImageAutoAdjustEnhance); }

REALstring autoAdjustRedEye() { return optionName(&kCIImageAutoAdjustRedEye); }

REALstring autoAdjustFeatures() { return optionName(&kCIImageAutoAdjustFeatures); }

REALobject emptyImage() {
    return wrappedResult(kImage, [] { return [CIImage emptyImage]; });
}

REALobject imageWithColor(REALobject color) {
    if (raisesWhenNull(nativeHandle(color), "color is nil")) return nullptr;
    return wrappedResult(kImage, [&] { return [CIImage imageWithColor:nativeHandle<CIColor*>(color)]; });
}

REALobject imageWithPicture(REALpicture picture) {
    if (!picture) return nullptr;
    return wrappedResult(kImage, [&]() -> CIImage* {
        bridge::Owned<CGImageRef> cgImage(bridge::copyCGImage(picture));
        return cgImage ? [CIImage imageWithCGImage:cgImage.get()] : nil;
    });
}

REALobject imageWithContentsOfPath(REALstring path, REALobject colorSpace) {
    return wrappedResult(kImage, [&] {
        NSString* text = bridge::temporaryString(path);
        return [CIImage imageWithContentsOfURL:[NSURL fileURLWithPath:text isDirectory:NO]
                                       options:optionsWithColorSpace(colorSpace)];
    });
}

// Loads an image on a worker. `make` returns a request whose objects are not owned; they are retained during
// the call, because the host may run code that drains an autorelease pool.
template <class Make>
REALobject loadOnWorker(Make&& make) {
    return prepared([&] {
        ImageLoadRequest request = make();
        bridge::Retained options([request.options retain]), url([request.url retain]),
            data([request.data retain]);
        RunThreaded(&request, DoWork, nullptr);
        bridge::Retained result(request.result);
        return wrapped(kImage, result.get());
    });
}

REALobject imageWithDataMT(REALmemoryBlock data) {
    if (!data) return nullptr;
    return loadOnWorker([&] { return ImageLoadRequest{.data = NewNSData(data)}; });
}

REALobject imageWithContentsOfFileMT(REALfolderItem file) {
    return loadOnWorker([&] { return ImageLoadRequest{.url = NewNSURLfile(file)}; });
}

REALobject imageWithContentsOfFileAndColorSpaceMT(REALfolderItem file, REALobject colorSpace) {
    return loadOnWorker([&] {
        return ImageLoadRequest{.url = NewNSURLfile(file), .options = optionsWithColorSpace(colorSpace)};
    });
}

// --- tables -----------------------------------------------------------------------------------------------

REALproperty properties[] = {
    handleProperty(),
    property("description", "String", description),
};

REALconstant constants[] = {
    constant("kCIFormatARGB8 = 23"),
    constant("kCIFormatRGBA16 = 27"),
    constant("kCIFormatRGBAf = 34"),
};

REALmethodDefinition methods[] = {
    constructorWithHandle<kImage>(),
    method("Constructor(cgimage as CGImageKaz)", initWithCGImage),
    method("Constructor(cgimage as CGImageKaz, cgcolorspace as CGColorSpaceKaz)",
           initWithCGImageAndColorSpace),
    method("Constructor(file as FolderItem)", initWithFile),
    method("Constructor(file as FolderItem, cgcolorspace as CGColorSpaceKaz)", initWithFileAndColorSpace),
    method("Constructor(data as memoryblock)", initWithData),
    method("Constructor(data as memoryblock, cgcolorspace as CGColorSpaceKaz)", initWithDataAndColorSpace),
    method("Constructor(data as memoryblock, BytesPerRow as integer, width as integer, height as integer, "
           "format "
           "as integer, cgcolorspace as CGColorSpaceKaz)",
           initWithBitmapData),
    method("Constructor(data as Memoryblock, Length as Integer, BytesPerRow as integer, width as integer, "
           "height "
           "as integer, format as integer, cgcolorspace as CGColorSpaceKaz)",
           initWithBitmapMemory),
    method("autoAdjustmentFilters as CIFilterKaz()", autoAdjustmentFilters),
    method("autoAdjustmentFiltersWithOptions(options as dictionary) as CIFilterKaz()",
           autoAdjustmentFiltersWithOptions),
    method("CreateCGImage(r as CGRectKaz = nil) as CGImageKaz", rendering::createCGImage),
    method("CreateCGImage(r as CGRectKaz, ColorSpace as CGColorSpaceKaz) as CGImageKaz",
           rendering::createCGImageInColorSpace),
    method("AsNSImageKaz as variant", rendering::asNSImage),
    method("Height as Integer", rendering::height),
    method("Width as Integer", rendering::width),
    method("url as string", rendering::url),
    method("colorSpace as CGColorSpaceKaz", rendering::colorSpace),
    method("properties as Dictionary", rendering::properties),
    method("RenderNSImage(UseSoftwareRenderer as boolean = false) as variant", rendering::renderNSImage),
    method("RenderPicture(Width as integer = 0, Height as integer = 0, UseSoftwareRenderer as boolean = "
           "false) as "
           "Picture",
           rendering::renderPicture, host::kDesktopOnly),
    method("Extent as CGRectKaz", rendering::extent),
    method("Definition as CIFilterShapeKaz", rendering::definition),
    method("ImageByApplyingTransform(transform as NSAffineTransformKaz) as CIImageKaz",
           rendering::imageByApplyingTransform),
    method("imageByCroppingToRect(r as CGRectKaz) as CIImageKaz", rendering::imageByCroppingToRect),
};

REALmethodDefinition sharedMethods[] = {
    method("kCIImageAutoAdjustEnhance as string", autoAdjustEnhance),
    method("kCIImageAutoAdjustRedEye as string", autoAdjustRedEye),
    method("kCIImageAutoAdjustFeatures as string", autoAdjustFeatures),
    method("emptyImage as CIImageKaz", emptyImage),
    method("imageWithColor(color as CIColorKaz) as CIImageKaz", imageWithColor),
    method("imageWithPicture(Pic as Picture) as CIImageKaz", imageWithPicture, host::kConsoleSafe),
    method("imageWithCGImage(CGImage as CGImageKaz) as CIImageKaz", imageWithCGImage),
    method("imageWithCGImage(CGImage as CGImageKaz, colorspace as CGColorSpaceKaz) as CIImageKaz",
           imageWithCGImageAndColorSpace),
    method("imageWithContentsOfURL(URL as String) as CIImageKaz", imageWithContentsOfURL),
    method("imageWithContentsOfURL(URL as string, colorspace as CGColorSpaceKaz) as CIImageKaz",
           imageWithContentsOfURLAndColorSpace),
    method("imageWithData(data as memoryblock) as CIImageKaz", imageWithData),
    method("imageWithDataMT(data as memoryblock) as CIImageKaz", imageWithDataMT),
    method("imageWithContentsOfFile(file as folderitem) as CIImageKaz", imageWithContentsOfFile),
    method("imageWithContentsOfFile(file as folderitem, colorspace as CGColorSpaceKaz) as CIImageKaz",
           imageWithContentsOfFileAndColorSpace),
    method("imageWithContentsOfFileMT(file as folderitem) as CIImageKaz", imageWithContentsOfFileMT),
    method("imageWithContentsOfFileMT(file as folderitem, colorspace as CGColorSpaceKaz) as CIImageKaz",
           imageWithContentsOfFileAndColorSpaceMT),
    method("imageWithContentsOfPath(Path as string, colorspace as CGColorSpaceKaz) as CIImageKaz",
           imageWithContentsOfPath),
};

void CIImageConstructor(REALobject self) { constructWrapper(self); }
void CIImageDestructor(REALobject self) { destroyWrapper(self); }

} // namespace

REALclassDefinition CIImageKazClass = classDefinition(
    {.name = "CIImageKaz", .constructor = CIImageConstructor, .destructor = CIImageDestructor}, properties,
    methods, constants, sharedMethods);

// --- functions that are also global -----------------------------------------------------------------------

REALobject imageWithCGImage(REALobject image) {
    return wrappedResult(kImage, [&] { return [CIImage imageWithCGImage:nativeHandle<CGImageRef>(image)]; });
}

REALobject imageWithCGImageAndColorSpace(REALobject image, REALobject colorSpace) {
    if (raisesWhenNull(nativeHandle(image), kImageIsNil)) return nullptr;
    return wrappedResult(kImage, [&] {
        return [CIImage imageWithCGImage:nativeHandle<CGImageRef>(image)
                                 options:optionsWithColorSpace(colorSpace)];
    });
}

REALobject imageWithContentsOfURL(REALstring url) {
    return wrappedResult(kImage, [&] { return [CIImage imageWithContentsOfURL:urlOfString(url)]; });
}

REALobject imageWithContentsOfURLAndColorSpace(REALstring url, REALobject colorSpace) {
    return wrappedResult(kImage, [&] {
        return [CIImage imageWithContentsOfURL:urlOfString(url) options:optionsWithColorSpace(colorSpace)];
    });
}

REALobject imageWithData(REALmemoryBlock data) {
    if (raisesWhenNull(data, kMemoryBlockIsNil)) return nullptr;
    return wrappedResult(kImage, [&] { return [CIImage imageWithData:NewNSData(data)]; });
}

REALobject imageWithDataAndColorSpace(REALmemoryBlock data, REALobject colorSpace) {
    if (raisesWhenNull(data, kMemoryBlockIsNil)) return nullptr;
    return wrappedResult(kImage, [&] {
        return [CIImage imageWithData:NewNSData(data) options:optionsWithColorSpace(colorSpace)];
    });
}

REALobject imageWithContentsOfFile(REALfolderItem file) {
    return wrappedResult(kImage, [&] { return [CIImage imageWithContentsOfURL:NewNSURLfile(file)]; });
}

REALobject imageWithContentsOfFileAndColorSpace(REALfolderItem file, REALobject colorSpace) {
    if (raisesWhenNull(file, "file is nil")) return nullptr;
    return wrappedResult(kImage, [&] {
        return [CIImage imageWithContentsOfURL:NewNSURLfile(file) options:optionsWithColorSpace(colorSpace)];
    });
}

REALobject imageWithBitmapData(REALmemoryBlock data, std::int32_t bytesPerRow, std::int32_t width,
                               std::int32_t height, std::int32_t format, REALobject colorSpace) {
    if (raisesWhenNull(data, kMemoryBlockIsNil)) return nullptr;
    return wrappedResult(kImage, [&] {
        return bitmapImage(NewNSData(data), {bytesPerRow, width, height, format, colorSpace});
    });
}

REALobject imageWithBitmapMemory(REALmemoryBlock data, std::int32_t length, std::int32_t bytesPerRow,
                                 std::int32_t width, std::int32_t height, std::int32_t format,
                                 REALobject colorSpace) {
    if (raisesWhenNull(data, "data memoryblock is nil")) return nullptr;
    return wrappedResult(kImage, [&] {
        return bitmapImage(dataOnBlock(data, length), {bytesPerRow, width, height, format, colorSpace});
    });
}

} // namespace coreimage
