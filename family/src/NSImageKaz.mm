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
    property("Width", "Double", getter<double, [](NSImage* i) { return [i size].width; }>),
    property("Height", "Double", getter<double, [](NSImage* i) { return [i size].height; }>),
};

REALmethodDefinition methods[] = {
    method("Constructor(file as FolderItem)", initWithFile),
    method("CopyPicture as Picture", copyPicture),
    method("CGImage as CGImageKaz", cgImageMethod),
    method("TIFFRepresentation as Memoryblock", tiffRepresentation),
};

} // namespace

REALclassDefinition NSImageKazClass =
    classDefinition({.name = "NSImageKaz", .constructor = constructWrapper, .destructor = destroyWrapper},
                    properties, methods);

} // namespace family
