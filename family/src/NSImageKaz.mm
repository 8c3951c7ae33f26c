// NSImageKaz: a Cocoa image.
#include "support.h"

#include <bridge/files.h>
#include <bridge/memoryblocks.h>

#import <AppKit/AppKit.h>

namespace family {
namespace {

NSImage* image(REALobject self) { return nativeHandle<NSImage*>(self); }

// Stays empty when the file holds no image.
void initWithFile(REALobject self, REALfolderItem file) {
    if (raisesWhenInitialized(self) || raisesWhenNull(file, "file is nil")) return;
    construct(self, [&]() -> NSImage* {
        NSString* path = [NewNSURLfile(file) path];
        return path ? [[NSImage alloc] initWithContentsOfFile:path] : nil;
    });
}

CGImageRef cgImage(REALobject self) {
    return [image(self) CGImageForProposedRect:nullptr context:nil hints:nil];
}

REALpicture copyPicture(REALobject self) {
    return guardedInPool([&] { return newPictureOf(cgImage(self)); });
}

REALobject cgImageMethod(REALobject self) {
    return guardedInPool([&] { return newCGImage(cgImage(self)); });
}

REALmemoryBlock tiffRepresentation(REALobject self) {
    return guardedInPool([&] { return NSDataRB([image(self) TIFFRepresentation]); });
}

REALproperty properties[] = {
    handleProperty(),
    /// The width in points; 0 while the object is empty.
    ///     Print Str(self.Width)
    property("Width", "Double", getter<double, [](NSImage* i) { return [i size].width; }>),
    /// The height in points; 0 while the object is empty.
    ///     Print Str(self.Height)
    property("Height", "Double", getter<double, [](NSImage* i) { return [i size].height; }>),
};

REALmethodDefinition methods[] = {
    /// Makes an image of a file; it stays empty if the file holds none. Raises NilObjectException without a
    /// file.
    ///     Dim photo As New NSImageKaz(SamplePhoto("coffee.png"))
    method("Constructor(file as FolderItem)", initWithFile),
    /// Returns the image as a new Picture, or Nil while the object is empty.
    ///     Print Str(self.CopyPicture.Width)
    method("CopyPicture as Picture", copyPicture),
    /// Returns the image as a Core Graphics image, or Nil while the object is empty.
    ///     Print Str(self.CGImage.Width)
    method("CGImage as CGImageKaz", cgImageMethod),
    /// Returns the image as the bytes of a TIFF file, or Nil while the object is empty.
    ///     Print Str(self.TIFFRepresentation.Size)
    method("TIFFRepresentation as Memoryblock", tiffRepresentation),
};

} // namespace

/// A Cocoa image.
///     Dim image As New NSImageKaz(SamplePhoto("coffee.png"))
REALclassDefinition NSImageKazClass =
    classDefinition({.name = "NSImageKaz", .constructor = constructWrapper, .destructor = destroyWrapper},
                    properties, methods);

} // namespace family
