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
    /// The recipe as Core Image describes it.
    ///     Print self.description
    property("description", "String", description),
};

REALconstant constants[] = {
    /// Bitmap format: 4 bytes a pixel, alpha first, then red, green and blue multiplied by it.
    constant("kCIFormatARGB8 = 23"),
    /// Bitmap format: 16 bits a component, red, green, blue, alpha.
    constant("kCIFormatRGBA16 = 27"),
    /// Bitmap format: single precision a component, red, green, blue, alpha.
    constant("kCIFormatRGBAf = 34"),
};

REALmethodDefinition methods[] = {
    constructorWithHandle<kImage>(),
    /// Makes an image of a Core Graphics image. Raises NilObjectException without one.
    ///     Print Str(CIImageKaz(New CIImageKaz(bitmap)).Width)
    method("Constructor(cgimage as CGImageKaz)", initWithCGImage),
    /// Makes an image of a Core Graphics image, whose numbers are taken to be in the colour space. Raises
    /// NilObjectException if either is Nil.
    ///     Print Str(CIImageKaz(New CIImageKaz(bitmap, sRGB)).Width)
    method("Constructor(cgimage as CGImageKaz, cgcolorspace as CGColorSpaceKaz)",
           initWithCGImageAndColorSpace),
    /// Makes an image of a file; it stays empty if the file holds no image.
    ///     Print Str(CIImageKaz(New CIImageKaz(file)).Width)
    method("Constructor(file as FolderItem)", initWithFile),
    /// Makes an image of a file, whose numbers are taken to be in the colour space. Raises NilObjectException
    /// without a file.
    ///     Print Str(CIImageKaz(New CIImageKaz(file, sRGB)).Width)
    method("Constructor(file as FolderItem, cgcolorspace as CGColorSpaceKaz)", initWithFileAndColorSpace),
    /// Makes an image of an image file's bytes; it stays empty if they are none. Raises NilObjectException
    /// for Nil.
    ///     Print Str(CIImageKaz(New CIImageKaz(bytes)).Width)
    method("Constructor(data as memoryblock)", initWithData),
    /// Makes an image of an image file's bytes, whose numbers are taken to be in the colour space. Raises
    /// NilObjectException for Nil.
    ///     Print Str(CIImageKaz(New CIImageKaz(bytes, sRGB)).Width)
    method("Constructor(data as memoryblock, cgcolorspace as CGColorSpaceKaz)", initWithDataAndColorSpace),
    /// Makes an image of a copy of bare pixels: sizes in pixels, rows from the top, format from this class's
    /// constants. Raises NilObjectException for Nil.
    ///     Dim tile As New CIImageKaz(pixels, 16, 4, 4, CIImageKaz.kCIFormatARGB8, sRGB)
    method("Constructor(data as memoryblock, BytesPerRow as integer, width as integer, height as integer, "
           "format "
           "as integer, cgcolorspace as CGColorSpaceKaz)",
           initWithBitmapData),
    /// Makes an image of bare pixels in place: the block must hold Length bytes and outlive the image
    /// unchanged. Raises NilObjectException for Nil.
    ///     Dim tile As New CIImageKaz(pixels, 64, 16, 4, 4, CIImageKaz.kCIFormatARGB8, sRGB)
    method("Constructor(data as Memoryblock, Length as Integer, BytesPerRow as integer, width as integer, "
           "height "
           "as integer, format as integer, cgcolorspace as CGColorSpaceKaz)",
           initWithBitmapMemory),
    /// Returns the filters that would improve the photograph, with their values set, to be applied in order.
    ///     Print Str(self.autoAdjustmentFilters.Ubound + 1)
    method("autoAdjustmentFilters as CIFilterKaz()", autoAdjustmentFilters),
    /// Returns the filters that would improve the photograph; options leave out kinds by
    /// kCIImageAutoAdjustEnhance and kCIImageAutoAdjustRedEye.
    ///     Print Str(self.autoAdjustmentFiltersWithOptions(New Dictionary).Ubound + 1)
    method("autoAdjustmentFiltersWithOptions(options as dictionary) as CIFilterKaz()",
           autoAdjustmentFiltersWithOptions),
    /// Renders a rectangle of the image, in its pixels; a width or height below 1 is taken from the extent.
    /// Nil while the object is empty.
    ///     Print Str(self.CreateCGImage(New CGRectKaz(0, 0, 100, 80)).Height)
    method("CreateCGImage(r as CGRectKaz = nil) as CGImageKaz", rendering::createCGImage),
    /// Renders a rectangle of the image into a colour space, 8 bits a component; a width or height below 1 is
    /// taken from the extent. Nil while the object is empty.
    ///     Print Str(self.CreateCGImage(New CGRectKaz(0, 0, 100, 80), sRGB).Height)
    method("CreateCGImage(r as CGRectKaz, ColorSpace as CGColorSpaceKaz) as CGImageKaz",
           rendering::createCGImageInColorSpace),
    /// Returns an NSImageKaz that renders the image whenever it is drawn; Nil while the object is empty.
    ///     Dim lazy As NSImageKaz = self.AsNSImageKaz
    method("AsNSImageKaz as variant", rendering::asNSImage),
    /// The height of the extent in whole pixels; 2147483647 for an endless image, 0 while the object is
    /// empty.
    ///     Print Str(self.Height)
    method("Height as Integer", rendering::height),
    /// The width of the extent in whole pixels; 2147483647 for an endless image, 0 while the object is empty.
    ///     Print Str(self.Width)
    method("Width as Integer", rendering::width),
    /// The address of the file that the image is from; empty for any other image.
    ///     Print self.url
    method("url as string", rendering::url),
    /// The colour space of the pixels; Nil for an image that has none of its own.
    ///     Print self.colorSpace.Name
    method("colorSpace as CGColorSpaceKaz", rendering::colorSpace),
    /// What the file says about the image, such as the camera's settings.
    ///     Print Str(self.properties.Count)
    method("properties as Dictionary", rendering::properties),
    /// Renders the image into an NSImageKaz of its size; True renders on the processor. Nil while the object
    /// is empty.
    ///     Dim rendered As NSImageKaz = self.RenderNSImage
    method("RenderNSImage(UseSoftwareRenderer as boolean = false) as variant", rendering::renderNSImage),
    /// Renders the image into a Picture, scaled to the width and height in pixels; each below 1 is taken from
    /// the extent. Nil for an image without pixels.
    ///     Print Str(self.RenderPicture(150, 100).Width)
    method("RenderPicture(Width as integer = 0, Height as integer = 0, UseSoftwareRenderer as boolean = "
           "false) as "
           "Picture",
           rendering::renderPicture, host::kDesktopOnly),
    /// The rectangle that holds the image, in pixels; Nil while the object is empty.
    ///     Print self.Extent.Description
    method("Extent as CGRectKaz", rendering::extent),
    /// Where the image has pixels, as a shape; Nil while the object is empty.
    ///     Print self.Definition.description
    method("Definition as CIFilterShapeKaz", rendering::definition),
    /// Returns the image moved, scaled or turned by the transform; Nil if either is empty.
    ///     Print self.ImageByApplyingTransform(New NSAffineTransformKaz).Extent.Description
    method("ImageByApplyingTransform(transform as NSAffineTransformKaz) as CIImageKaz",
           rendering::imageByApplyingTransform),
    /// Returns the part of the image inside the rectangle, which keeps its place; Nil while the object is
    /// empty.
    ///     Print self.imageByCroppingToRect(New CGRectKaz(50, 50, 100, 80)).Extent.Description
    method("imageByCroppingToRect(r as CGRectKaz) as CIImageKaz", rendering::imageByCroppingToRect),
};

REALmethodDefinition sharedMethods[] = {
    /// The option of autoAdjustmentFiltersWithOptions for enhancement; empty on systems before 10.8.
    ///     Print CIImageKaz.kCIImageAutoAdjustEnhance
    method("kCIImageAutoAdjustEnhance as string", autoAdjustEnhance),
    /// The option of autoAdjustmentFiltersWithOptions for red eye correction; empty on systems before 10.8.
    ///     Print CIImageKaz.kCIImageAutoAdjustRedEye
    method("kCIImageAutoAdjustRedEye as string", autoAdjustRedEye),
    /// The option of autoAdjustmentFiltersWithOptions for faces that are known already; empty on systems
    /// before 10.8.
    ///     Print CIImageKaz.kCIImageAutoAdjustFeatures
    method("kCIImageAutoAdjustFeatures as string", autoAdjustFeatures),
    /// Returns an image without pixels.
    ///     Print CIImageKaz.emptyImage.Extent.Description
    method("emptyImage as CIImageKaz", emptyImage),
    /// Returns an endless image of one colour. Raises NilObjectException without a colour.
    ///     Dim red As CIImageKaz = CIImageKaz.imageWithColor(New CIColorKaz(1, 0, 0))
    method("imageWithColor(color as CIColorKaz) as CIImageKaz", imageWithColor),
    /// Returns an image of a copy of the picture's pixels; Nil for Nil.
    ///     Print Str(CIImageKaz.imageWithPicture(New Picture(30, 20, 32)).Width)
    method("imageWithPicture(Pic as Picture) as CIImageKaz", imageWithPicture, host::kConsoleSafe),
    /// Returns an image of a Core Graphics image, or Nil without one.
    ///     Print Str(CIImageKaz.imageWithCGImage(bitmap).Width)
    method("imageWithCGImage(CGImage as CGImageKaz) as CIImageKaz", imageWithCGImage),
    /// Returns an image of a Core Graphics image, whose numbers are taken to be in the colour space. Raises
    /// NilObjectException without an image.
    ///     Print Str(CIImageKaz.imageWithCGImage(bitmap, sRGB).Width)
    method("imageWithCGImage(CGImage as CGImageKaz, colorspace as CGColorSpaceKaz) as CIImageKaz",
           imageWithCGImageAndColorSpace),
    /// Returns an image of the file at an address, or Nil if it holds no image.
    ///     Print Str(CIImageKaz.imageWithContentsOfURL(file.URLPath).Width)
    method("imageWithContentsOfURL(URL as String) as CIImageKaz", imageWithContentsOfURL),
    /// Returns an image of the file at an address, whose numbers are taken to be in the colour space, or Nil
    /// if it holds no image.
    ///     Print Str(CIImageKaz.imageWithContentsOfURL(file.URLPath, sRGB).Width)
    method("imageWithContentsOfURL(URL as string, colorspace as CGColorSpaceKaz) as CIImageKaz",
           imageWithContentsOfURLAndColorSpace),
    /// Returns an image of an image file's bytes, or Nil if they are none. Raises NilObjectException for Nil.
    ///     Print Str(CIImageKaz.imageWithData(bytes).Width)
    method("imageWithData(data as memoryblock) as CIImageKaz", imageWithData),
    /// Returns an image of an image file's bytes, decoded on another thread while the program's other threads
    /// run; Nil if they are none.
    ///     Print Str(CIImageKaz.imageWithDataMT(bytes).Width)
    method("imageWithDataMT(data as memoryblock) as CIImageKaz", imageWithDataMT),
    /// Returns an image of a file, or Nil if it holds no image.
    ///     Print Str(CIImageKaz.imageWithContentsOfFile(file).Width)
    method("imageWithContentsOfFile(file as folderitem) as CIImageKaz", imageWithContentsOfFile),
    /// Returns an image of a file, whose numbers are taken to be in the colour space, or Nil if it holds no
    /// image. Raises NilObjectException without a file.
    ///     Print Str(CIImageKaz.imageWithContentsOfFile(file, sRGB).Width)
    method("imageWithContentsOfFile(file as folderitem, colorspace as CGColorSpaceKaz) as CIImageKaz",
           imageWithContentsOfFileAndColorSpace),
    /// Returns an image of a file, loaded on another thread while the program's other threads run; Nil if it
    /// holds no image.
    ///     Print Str(CIImageKaz.imageWithContentsOfFileMT(file).Width)
    method("imageWithContentsOfFileMT(file as folderitem) as CIImageKaz", imageWithContentsOfFileMT),
    /// Returns an image of a file, loaded on another thread with its numbers taken to be in the colour space;
    /// Nil if it holds no image.
    ///     Print Str(CIImageKaz.imageWithContentsOfFileMT(file, sRGB).Width)
    method("imageWithContentsOfFileMT(file as folderitem, colorspace as CGColorSpaceKaz) as CIImageKaz",
           imageWithContentsOfFileAndColorSpaceMT),
    /// Returns an image of the file at a path, whose numbers are taken to be in the colour space unless that
    /// is Nil; Nil if it holds no image.
    ///     Print Str(CIImageKaz.imageWithContentsOfPath(file.NativePath, Nil).Width)
    method("imageWithContentsOfPath(Path as string, colorspace as CGColorSpaceKaz) as CIImageKaz",
           imageWithContentsOfPath),
};

void CIImageConstructor(REALobject self) { constructWrapper(self); }
void CIImageDestructor(REALobject self) { destroyWrapper(self); }

} // namespace

/// The recipe of a picture: pixels from a file, memory or a filter, rendered when they are needed.
///     Dim file As FolderItem = SamplePhoto("coffee.png")
///     Dim stream As BinaryStream = BinaryStream.Open(file)
///     Dim bytes As MemoryBlock = stream.Read(stream.Length)
///     Dim pixels As New MemoryBlock(4 * 4 * 4)
///     Dim sRGB As CGColorSpaceKaz = CGColorSpaceKaz.SRGB
///     Dim bitmap As CGImageKaz = CGImageKaz.ImageWithFile(file)
///     Dim photo As CIImageKaz = CIImageKaz.imageWithContentsOfFile(file)
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
