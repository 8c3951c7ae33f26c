// CGImageKaz: a Core Graphics image, from a file or another class, to a file or a picture.
#include "support.h"

#include <bridge/files.h>
#include <bridge/pictures.h>

#include <ImageIO/ImageIO.h>

namespace family {
namespace {

CGImageRef image(REALobject self) { return nativeHandle<CGImageRef>(self); }

REALobject colorSpace(REALobject self) {
    return image(self) ? newColorSpace(CGImageGetColorSpace(image(self))) : nullptr;
}

REALobject crop(REALobject self, REALobject rect) {
    return guardedInPool([&]() -> REALobject {
        if (!image(self)) return nullptr;
        Owned<CGImageRef> part(CGImageCreateWithImageInRect(image(self), rectangleOf(rect)));
        return newCGImage(part.get());
    });
}

REALpicture picture(REALobject self) {
    return guardedInPool([&] { return newPictureOf(image(self)); });
}

// The type of an image file by its name; PNG for a name without extension, nil for an unknown one.
NSString* fileType(NSURL* url) {
    static const struct {
        NSString *extension, *type;
    } kTypes[] = {
        {@"", @"public.png"},
        {@"png", @"public.png"},
        {@"jpg", @"public.jpeg"},
        {@"jpeg", @"public.jpeg"},
        {@"tif", @"public.tiff"},
        {@"tiff", @"public.tiff"},
        {@"gif", @"com.compuserve.gif"},
        {@"bmp", @"com.microsoft.bmp"},
    };
    NSString* extension = [[[url path] pathExtension] lowercaseString];
    for (const auto& known : kTypes)
        if ([extension isEqualToString:known.extension]) return known.type;
    return nil;
}

bool save(REALobject self, REALfolderItem file) {
    if (raisesWhenNull(file, "file is nil")) return false;
    return guardedInPool([&] {
        NSURL* url = NewNSURLfile(file);
        if (!image(self) || !url) return false;
        NSString* type = fileType(url);
        if (!type) {
            NSString* problem =
                [NSString stringWithFormat:
                              @"cannot save %@: expected a name that ends in .png, .jpg, .tif, .gif or .bmp",
                              [[url path] lastPathComponent]];
            RaiseException(bridge::kUnsupportedOperation, [problem UTF8String]);
            return false;
        }
        Owned<CGImageDestinationRef> destination(
            CGImageDestinationCreateWithURL((CFURLRef)url, (CFStringRef)type, 1, nullptr));
        if (!destination) return false;
        CGImageDestinationAddImage(destination.get(), image(self), nullptr);
        return bool(CGImageDestinationFinalize(destination.get()));
    });
}

// Null when the file holds no image.
REALobject imageWithFile(REALfolderItem file) {
    if (raisesWhenNull(file, "file is nil")) return nullptr;
    return guardedInPool([&]() -> REALobject {
        NSURL* url = NewNSURLfile(file);
        if (!url) return nullptr;
        Owned<CGImageSourceRef> source(CGImageSourceCreateWithURL((CFURLRef)url, nullptr));
        if (!source) return nullptr;
        Owned<CGImageRef> loaded(CGImageSourceCreateImageAtIndex(source.get(), 0, nullptr));
        return newCGImage(loaded.get());
    });
}

REALobject imageWithPicture(REALpicture source) {
    if (raisesWhenNull(source, "Picture is nil")) return nullptr;
    return guardedInPool([&] {
        Owned<CGImageRef> copy(bridge::copyCGImage(source));
        return newCGImage(copy.get());
    });
}

REALproperty properties[] = {
    handleProperty(),
    /// The width in pixels; 0 while the object is empty.
    ///     Print Str(self.Width)
    property("Width", "Integer", number<CGImageGetWidth>),
    /// The height in pixels; 0 while the object is empty.
    ///     Print Str(self.Height)
    property("Height", "Integer", number<CGImageGetHeight>),
    /// The bits of a component, usually 8; 0 while the object is empty.
    ///     Print Str(self.BitsPerComponent)
    property("BitsPerComponent", "Integer", number<CGImageGetBitsPerComponent>),
    /// The bits of a pixel, usually 24 or 32; 0 while the object is empty.
    ///     Print Str(self.BitsPerPixel)
    property("BitsPerPixel", "Integer", number<CGImageGetBitsPerPixel>),
    /// The bytes from one row to the next; 0 while the object is empty.
    ///     Print Str(self.BytesPerRow)
    property("BytesPerRow", "Integer", number<CGImageGetBytesPerRow>),
};

REALmethodDefinition methods[] = {
    /// The colour space of the pixels, or Nil while the object is empty.
    ///     Print Str(self.ColorSpace.Model)
    method("ColorSpace as CGColorSpaceKaz", colorSpace),
    /// Returns the part inside a rectangle, which counts pixels from the upper left corner; Nil if nothing is
    /// inside.
    ///     Print Str(self.Crop(New CGRectKaz(0, 0, 100, 80)).Width)
    method("Crop(r as CGRectKaz) as CGImageKaz", crop),
    /// Returns the image as a Picture, or Nil while the object is empty.
    ///     Print Str(self.Picture.Width)
    method("Picture as Picture", picture),
    /// Writes the image in the format that the file's name ends in, PNG without one, and says whether it
    /// could. Raises NilObjectException without a file, and UnsupportedOperationException for an unknown
    /// ending.
    ///     Print Str(self.Save(GetFolderItem("copy.png")))
    method("Save(file as FolderItem) as Boolean", save),
};

REALmethodDefinition sharedMethods[] = {
    /// Returns the first image of a file, or Nil if it holds none. Raises NilObjectException without a file.
    ///     Print Str(CGImageKaz.ImageWithFile(SamplePhoto("coffee.png")).Height)
    method("ImageWithFile(file as FolderItem) as CGImageKaz", imageWithFile),
    /// Returns an image of a copy of the picture's pixels. Raises NilObjectException for Nil.
    ///     Print Str(CGImageKaz.ImageWithPicture(New Picture(30, 20, 32)).Width)
    method("ImageWithPicture(Pic as Picture) as CGImageKaz", imageWithPicture),
};

} // namespace

/// A Core Graphics image: pixels from a file or another class, for a file or a picture.
///     Dim image As CGImageKaz = CGImageKaz.ImageWithFile(SamplePhoto("coffee.png"))
REALclassDefinition CGImageKazClass = classDefinition({.name = "CGImageKaz", .destructor = destroyWrapper},
                                                      properties, methods, {}, sharedMethods);

REALpicture newPictureOf(CGImageRef image) {
    if (!image) return nullptr;
    std::int32_t width = static_cast<std::int32_t>(CGImageGetWidth(image));
    std::int32_t height = static_cast<std::int32_t>(CGImageGetHeight(image));
    host::Held picture(REALNewPicture(width, height, 32));
    if (!picture) return nullptr;
    {
        bridge::LockedDescription description(picture.get(), kREALPictureCGContext);
        if (!description.context()) return nullptr;
        CGContextDrawImage(description.context(),
                           CGRectMake(0, 0, static_cast<CGFloat>(width), static_cast<CGFloat>(height)),
                           image);
    }
    REALPictureClearCache(picture.get());
    return picture.release();
}

} // namespace family
