// Picture: the class, its files, and its faces for plugins.
#include "framework/picture.h"

#include "drawing.h"
#include "files.h"
#include "framework/cfstring.h"
#include "framework/folderitem.h"
#include "framework/memoryblock.h"
#include "picture_data.h"
#include "runtime/autorelease_pool.h"
#include "syntax/names.h"
#include "table.h"

#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>
#include <ImageIO/ImageIO.h>
#include <QD/QDOffscreen.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace studio {

Picture& pictureOf(REALobject picture) { return dataOf<Picture>(picture); }

namespace {

// Releases a Core Foundation reference at the end of a scope; null is ignored.
template <class T>
struct Owned {
    T ref;
    explicit Owned(T ref) : ref(ref) {}
    Owned(const Owned&) = delete;
    ~Owned() {
        if (ref) CFRelease(ref);
    }
    operator T() const { return ref; }
};

struct ColorSpace {
    CGColorSpaceRef ref = CGColorSpaceCreateDeviceRGB();
    ~ColorSpace() { CGColorSpaceRelease(ref); }
};

bool prepare(Picture& picture, std::int32_t width, std::int32_t height, std::int32_t depth) {
    if (width < 1 || height < 1 || std::int64_t(width) * height > INT32_MAX / 4) return false;
    picture.depth = depth ? depth : 32;
    picture.hasAlpha = depth == 0;
    try {
        picture.pixels.resize(width, height);
    } catch (const std::bad_alloc&) {
        return false;
    }
    if (!picture.hasAlpha) picture.pixels.fill(0xFFFFFFFF);
    return true;
}

void construct(REALobject self, std::int32_t width, std::int32_t height, std::int32_t depth) {
    if (width < 1 || height < 1) raise("InvalidArgumentException", "a Picture must be at least 1 by 1 pixel");
    if (!prepare(pictureOf(self), width, height, depth))
        raise("OutOfMemoryException", "There is no memory for the Picture.");
}

CGContextRef contextOf(Picture& picture) {
    if (!picture.context) picture.context = newContextOn(picture.pixels);
    return static_cast<CGContextRef>(picture.context);
}

// Null when the picture is too large for QuickDraw's coordinates.
GWorldPtr worldOf(Picture& picture) {
    Pixels& p = picture.pixels;
    if (!picture.world && p.width <= INT16_MAX && p.height <= INT16_MAX) {
        Rect bounds = {0, 0, SInt16(p.height), SInt16(p.width)};
        NewGWorldFromPtr(&picture.world, k32ARGBPixelFormat, &bounds, nullptr, nullptr, 0,
                         reinterpret_cast<Ptr>(p.bytes.data()), p.width * 4);
    }
    return picture.world;
}

REALpixelBuffer* bufferOf(Picture& picture) {
    if (!picture.buffer) {
        Pixels& p = picture.pixels;
        for (int y = 0; y < p.height; ++y) picture.rows.push_back(p.at(0, y));
        picture.buffer = std::make_unique<REALpixelBuffer>();
        picture.buffer->format = 0;
        picture.buffer->width = p.width;
        picture.buffer->height = p.height;
        picture.buffer->rows = picture.rows.data();
    }
    return picture.buffer.get();
}

void setMask(REALobject self, std::uint32_t, REALobject mask) {
    if (pictureOf(self).hasAlpha)
        raise("UnsupportedOperationException", "a Picture with an alpha channel has no mask");
    heap().release(std::exchange(pictureOf(self).mask, Heap::retain(mask)));
}

// ---- files -----------------------------------------------------------------------------------------------

// A method in an autorelease pool of its own. Cocoa raises for want of memory.
template <auto body>
struct InCocoa;
template <class R, class... A, R (*body)(A...)>
struct InCocoa<body> {
    static R call(A... arguments) {
        return inCocoa([&] {
            AutoreleasePool pool;
            return body(arguments...);
        });
    }
};

struct FileKind {
    std::int32_t constant; // Picture.SaveAs...
    const char* type;
    const char* name;
    std::vector<std::string_view> extensions;
};
const FileKind kFileKinds[] = {
    {1, "public.png", "PNG", {"png"}},           {2, "public.jpeg", "JPEG", {"jpg", "jpeg"}},
    {3, "public.tiff", "TIFF", {"tif", "tiff"}}, {4, "com.compuserve.gif", "GIF", {"gif"}},
    {5, "com.microsoft.bmp", "BMP", {"bmp"}},
};
constexpr std::int32_t kByName = 0;

std::string extensionOf(const std::string& path) {
    std::string name = files::leaf(path);
    std::size_t dot = name.rfind('.');
    return dot == std::string::npos || dot == 0 ? "" : folded(name.substr(dot + 1));
}

// The kind that the program asks for; refuses to give a file a name that belongs to another kind.
const FileKind& kindFor(const std::string& path, std::int32_t format) {
    std::string extension = extensionOf(path);
    const FileKind *asked = nullptr, *named = nullptr;
    for (const FileKind& kind : kFileKinds) {
        if (kind.constant == format) asked = &kind;
        if (std::find(kind.extensions.begin(), kind.extensions.end(), extension) != kind.extensions.end())
            named = &kind;
    }
    if (format == kByName) asked = named;
    if (format != kByName && !asked)
        raise("InvalidArgumentException",
              "a Picture cannot be saved in the format " + std::to_string(format));
    if (!asked)
        raise("UnsupportedOperationException",
              "cannot save " + files::leaf(path) +
                  ": expected a name that ends in .png, .jpg, .tif, .gif or .bmp");
    if (named != asked && !extension.empty())
        raise("UnsupportedOperationException", "cannot save " + files::leaf(path) + " as " + asked->name +
                                                   ": expected a name that ends in ." +
                                                   std::string(asked->extensions[0]));
    return *asked;
}

CFURLRef urlOf(const std::string& path) {
    Owned<CFStringRef> text(static_cast<CFStringRef>(makeCFString(path)));
    return CFURLCreateWithFileSystemPath(nullptr, text, kCFURLPOSIXPathStyle, false);
}

bool encode(REALobject self, CGImageDestinationRef destination, std::int32_t quality) {
    double level = std::clamp(quality, 0, 100) / 100.0;
    Owned<CFNumberRef> number(CFNumberCreate(nullptr, kCFNumberDoubleType, &level));
    Owned<CFMutableDictionaryRef> properties(CFDictionaryCreateMutable(
        nullptr, 1, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    CFDictionarySetValue(properties, kCGImageDestinationLossyCompressionQuality, number);
    auto* image = static_cast<CGImageRef>(pictureCGImage(self));
    CGImageDestinationAddImage(destination, image, properties);
    CGImageRelease(image);
    return CGImageDestinationFinalize(destination);
}

void save(REALobject self, REALobject file, std::int32_t format, std::int32_t quality) {
    if (!file) raise("NilObjectException", "file is nil");
    const std::string& path = folderItemPath(file);
    const FileKind& kind = kindFor(path, format);
    Owned<CFURLRef> url(urlOf(path));
    Owned<CFStringRef> type(static_cast<CFStringRef>(makeCFString(kind.type)));
    Owned<CGImageDestinationRef> destination(url.ref ? CGImageDestinationCreateWithURL(url, type, 1, nullptr)
                                                     : nullptr);
    if (!destination.ref || !encode(self, destination, quality)) files::cannotWrite(path);
}

REALobject getData(REALobject self, REALstring format, std::int32_t quality) {
    std::string wanted = toUtf8(format);
    Owned<CFStringRef> type(static_cast<CFStringRef>(makeCFString(wanted)));
    Owned<CFMutableDataRef> data(CFDataCreateMutable(nullptr, 0));
    Owned<CGImageDestinationRef> destination(CGImageDestinationCreateWithData(data, type, 1, nullptr));
    if (!destination.ref)
        raise("InvalidArgumentException",
              "there is no picture format \"" + wanted +
                  "\"; expected one of Picture.FormatPNG, FormatJPEG, FormatTIFF, "
                  "FormatGIF and FormatBMP");
    if (!encode(self, destination, quality)) raise("IOException", "cannot encode the Picture");
    return newMemoryBlock(
        {reinterpret_cast<const char*>(CFDataGetBytePtr(data)), std::size_t(CFDataGetLength(data))});
}

// Null when the source holds no readable picture.
REALobject firstPicture(CGImageSourceRef source) {
    CGImageRef image = source ? CGImageSourceCreateImageAtIndex(source, 0, nullptr) : nullptr;
    if (!image) return nullptr;
    CGImageAlphaInfo alpha = CGImageGetAlphaInfo(image);
    bool opaque = alpha == kCGImageAlphaNone || alpha == kCGImageAlphaNoneSkipFirst ||
                  alpha == kCGImageAlphaNoneSkipLast;
    auto width = std::int32_t(CGImageGetWidth(image)), height = std::int32_t(CGImageGetHeight(image));
    ObjectRef result(tryNewPicture(width, height, opaque ? 32 : 0));
    if (result)
        CGContextDrawImage(contextOf(pictureOf(result)), CGRectMake(0, 0, CGFloat(width), CGFloat(height)),
                           image);
    CGImageRelease(image);
    if (!result) raise("OutOfMemoryException", "There is no memory for the Picture.");
    return result.release();
}

REALobject open(REALobject file) {
    if (!file) raise("NilObjectException", "file is nil");
    const std::string& path = folderItemPath(file);
    if (!files::exists(path)) raise("IOException", path + " does not exist");
    Owned<CFURLRef> url(urlOf(path));
    Owned<CGImageSourceRef> source(url.ref ? CGImageSourceCreateWithURL(url, nullptr) : nullptr);
    REALobject result = firstPicture(source);
    if (!result) raise("IOException", path + " does not hold a readable picture");
    return result;
}

// Nil for data that is no picture.
REALobject fromData(REALobject block) {
    if (!block) raise("NilObjectException", "the data is nil");
    MemoryBlockBytes& bytes = memoryBlockBytes(block);
    Owned<CFDataRef> data(CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(bytes.data), bytes.size));
    Owned<CGImageSourceRef> source(data.ref ? CGImageSourceCreateWithData(data, nullptr) : nullptr);
    return firstPicture(source);
}

} // namespace

// ---- the services ----------------------------------------------------------------------------------------

REALobject tryNewPicture(std::int32_t width, std::int32_t height, std::int32_t depth) {
    ObjectRef object(newInstance("Picture"));
    return prepare(pictureOf(object), width, height, depth) ? object.release() : nullptr;
}

REALobject pictureMask(REALobject self, bool create) {
    Picture& picture = pictureOf(self);
    if (!picture.mask && create && !picture.hasAlpha) {
        picture.mask = tryNewPicture(picture.pixels.width, picture.pixels.height, 32);
        if (picture.mask) pictureOf(picture.mask).pixels.fill(0xFF000000); // lets everything through
    }
    return Heap::retain(picture.mask);
}

std::int32_t preferredDescription() {
    return runtime().version() < 2010.0 ? kREALPictureGWorld : kREALPictureCGContext;
}

bool describePicture(REALobject self, REALpictureDescription* out, std::int32_t kind) {
    if (!out) return false;
    Picture& picture = pictureOf(self);
    *out = {};
    out->kind = kind;
    if (picture.pixels.width > 0 && kind == kREALPictureGWorld) out->handle = worldOf(picture);
    if (picture.pixels.width > 0 && kind == kREALPictureCGContext) out->handle = contextOf(picture);
    if (picture.pixels.width > 0 && kind == kREALPicturePixelBuffer) out->handle = bufferOf(picture);
    if (!out->handle) {
        // Hosts before 2012.0 expect an unlock even after a lock that failed.
        if (runtime().version() < 2012.0) ++picture.descriptions;
        return false;
    }
    ++picture.descriptions;
    return true;
}

void undescribePicture(REALobject self) {
    Picture& picture = pictureOf(self);
    if (picture.descriptions == 0)
        heap().violation("unlockPictureDescription: this Picture's description is not locked");
    else
        --picture.descriptions;
}

// Nothing to clear: the pixels are the picture. Drawing that is still pending is finished.
void pictureChanged(REALobject self) {
    if (void* context = pictureOf(self).context) CGContextFlush(static_cast<CGContextRef>(context));
}

Pixels masked(REALobject self) {
    Pixels result = pictureOf(self).pixels;
    if (REALobject mask = pictureOf(self).mask) result.applyMask(pictureOf(mask).pixels);
    return result;
}

void* pictureCGImage(REALobject self) {
    auto* copy = new Pixels(masked(self));
    CGDataProviderRef provider = CGDataProviderCreateWithData(
        copy, copy->bytes.data(), copy->bytes.size(),
        [](void* info, const void*, std::size_t) { delete static_cast<Pixels*>(info); });
    ColorSpace space;
    CGImageRef image = CGImageCreate(std::size_t(copy->width), std::size_t(copy->height), 8, 32,
                                     std::size_t(copy->width) * 4, space.ref, kCGImageAlphaPremultipliedFirst,
                                     provider, nullptr, false, kCGRenderingIntentDefault);
    CGDataProviderRelease(provider);
    return image;
}

namespace {

// ---- the class -------------------------------------------------------------------------------------------

/// A picture of 8 bits for each of red, green, blue and alpha.
///     Dim photo As Picture = Picture.Open(SamplePhoto("coffee.png"))
FrameworkClass pictureClass() {
    FrameworkClass table = classWithData<Picture>("Picture");
    table.destructor = +[](REALobject self) {
        Picture& picture = pictureOf(self);
        if (picture.descriptions > 0)
            heap().remark("a Picture was destroyed with its description locked " +
                          std::to_string(picture.descriptions) + " times");
        if (picture.context) CGContextRelease(static_cast<CGContextRef>(picture.context));
        DisposeGWorld(picture.world);
        heap().release(picture.mask);
        picture.~Picture();
    };
    table.properties = {
        /// The width in pixels.
        ///     Print Str(photo.Width)
        property("Width", "Integer",
                 [](REALobject self) { return std::int32_t(pictureOf(self).pixels.width); }),
        /// The height in pixels.
        ///     Print Str(photo.Height)
        property("Height", "Integer",
                 [](REALobject self) { return std::int32_t(pictureOf(self).pixels.height); }),
        /// The depth that the picture was made with, in bits for each pixel; 32 with an alpha channel.
        ///     Print Str(photo.Depth)
        property("Depth", "Integer", [](REALobject self) { return std::int32_t(pictureOf(self).depth); }),
        /// Whether the picture has an alpha channel, as one that was made without a depth has.
        ///     Print Str(photo.HasAlphaChannel)
        property("HasAlphaChannel", "Boolean", [](REALobject self) { return pictureOf(self).hasAlpha; }),
        /// What draws on the picture.
        ///     photo.Graphics.DrawLine(0, 0, photo.Width, photo.Height)
        property("Graphics", "Graphics", pictureGraphics),
        /// What reads and sets single pixels.
        ///     Print Str(photo.RGBSurface.Pixel(0, 0).Red)
        property("RGBSurface", "RGBSurface", pictureSurface),
        /// A picture of greys: where it is white, this one is clear. Raises UnsupportedOperationException
        /// when one is given to a picture with an alpha channel.
        ///     photo.Mask.Graphics.ForeColor = &c808080
        ///     photo.Mask.Graphics.FillRect(0, 0, 100, 100)
        property(
            "Mask", "Picture", [](REALobject self) { return pictureMask(self, true); }, setMask),
    };
    table.methods = {
        /// Makes a white picture, or without a depth a clear one with an alpha channel. Raises
        /// InvalidArgumentException for a size below 1, OutOfMemoryException for too large a one.
        ///     Dim canvas As New Picture(320, 240)
        method("Constructor(width As Integer, height As Integer, depth As Integer = 0)", construct),
        /// Writes the picture to a file in one of the SaveAs formats; quality, from 0 to 100, is for JPEG.
        /// Raises UnsupportedOperationException if the name belongs to another format, IOException if the
        /// file cannot be written.
        ///     photo.Save(GetFolderItem("coffee.jpg"), Picture.SaveAsJPEG, Picture.QualityHigh)
        method("Save(file As FolderItem, format As Integer, quality As Integer = 85)", InCocoa<save>::call),
        /// The picture as the bytes of a file in one of the Format formats. Raises InvalidArgumentException
        /// for an unknown one.
        ///     Print Str(photo.GetData(Picture.FormatPNG).Size > 0)
        method("GetData(format As String, quality As Integer = 85) As MemoryBlock", InCocoa<getData>::call),
    };
    table.sharedMethods = {
        /// Reads a picture from a file. Raises NilObjectException without one, IOException if it does not
        /// exist or holds no picture.
        ///     Dim cup As Picture = Picture.Open(SamplePhoto("coffee.png"))
        method("Open(file As FolderItem) As Picture", InCocoa<open>::call),
        /// Reads a picture from the bytes of a file; Nil if they hold none. Raises NilObjectException
        /// without data.
        ///     Dim copy As Picture = Picture.FromData(photo.GetData(Picture.FormatPNG))
        method("FromData(data As MemoryBlock) As Picture", InCocoa<fromData>::call),
        /// Whether GetData knows a format.
        ///     Print Str(Picture.IsExportFormatSupported(Picture.FormatPNG))
        method("IsExportFormatSupported(format As String) As Boolean",
               [](REALstring format) {
                   return std::any_of(std::begin(kFileKinds), std::end(kFileKinds),
                                      [&](const FileKind& kind) { return kind.type == toUtf8(format); });
               }),
    };
    table.constants = {
        /// Saves in the format that the file's name ends in.
        "SaveAsDefault = 0",
        /// Saves as PNG, without loss.
        "SaveAsPNG = 1",
        /// Saves as JPEG, without alpha.
        "SaveAsJPEG = 2",
        /// Saves as TIFF, without loss.
        "SaveAsTIFF = 3",
        /// Saves as GIF, with 256 colours.
        "SaveAsGIF = 4",
        /// Saves as BMP.
        "SaveAsWindowsBMP = 5",
        /// The data of a PNG file.
        "FormatPNG = \"public.png\"",
        /// The data of a JPEG file.
        "FormatJPEG = \"public.jpeg\"",
        /// The data of a TIFF file.
        "FormatTIFF = \"public.tiff\"",
        /// The data of a GIF file.
        "FormatGIF = \"com.compuserve.gif\"",
        /// The data of a BMP file.
        "FormatBMP = \"com.microsoft.bmp\"",
        /// A small file that shows its compression.
        "QualityLow = 25",
        /// A fairly small file.
        "QualityMedium = 50",
        /// A good picture.
        "QualityHigh = 75",
        /// The best picture, in a large file.
        "QualityMax = 100",
        /// The quality if none is given.
        "QualityDefault = 85",
    };
    return table;
}

const Registrar registrar([] { return FrameworkPart{{pictureClass()}}; });

} // namespace

} // namespace studio
