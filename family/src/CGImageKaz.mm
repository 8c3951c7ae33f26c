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
    property("Width", "Integer", number<CGImageGetWidth>),
    property("Height", "Integer", number<CGImageGetHeight>),
    property("BitsPerComponent", "Integer", number<CGImageGetBitsPerComponent>),
    property("BitsPerPixel", "Integer", number<CGImageGetBitsPerPixel>),
    property("BytesPerRow", "Integer", number<CGImageGetBytesPerRow>),
};

REALmethodDefinition methods[] = {
    method("ColorSpace as CGColorSpaceKaz", colorSpace),
    method("Crop(r as CGRectKaz) as CGImageKaz", crop),
    method("Picture as Picture", picture),
    method("Save(file as FolderItem) as Boolean", save),
};

REALmethodDefinition sharedMethods[] = {
    method("ImageWithFile(file as FolderItem) as CGImageKaz", imageWithFile),
    method("ImageWithPicture(Pic as Picture) as CGImageKaz", imageWithPicture),
};

} // namespace

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
