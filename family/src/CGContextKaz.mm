// CGContextKaz: a bitmap to draw into, 8 bits a component, premultiplied RGBA. The origin is the lower left.
#include "support.h"

namespace family {
namespace {

CGContextRef context(REALobject self) { return nativeHandle<CGContextRef>(self); }

void initWithSpace(REALobject self, std::int32_t width, std::int32_t height, REALobject space) {
    if (raisesWhenInitialized(self)) return;
    if (width < 1 || height < 1) {
        RaiseException(bridge::kOutOfBounds, "A context needs a width and a height of at least 1.");
        return;
    }
    guardedInPool([&] {
        CGColorSpaceRef wanted = nativeHandle<CGColorSpaceRef>(space);
        Owned<CGColorSpaceRef> native(wanted ? CGColorSpaceRetain(wanted) : CGColorSpaceCreateDeviceRGB());
        instanceData<CGContextRef>(self) =
            CGBitmapContextCreate(nullptr, static_cast<std::size_t>(width), static_cast<std::size_t>(height),
                                  8, 0, native.get(), kCGImageAlphaPremultipliedLast);
    });
}

// The drawing methods do nothing on an empty wrapper.
template <class Draw>
void drawing(REALobject self, Draw&& draw) {
    if (!context(self)) return;
    guardedInPool([&] { draw(context(self)); });
}

void setFillColor(REALobject self, REALobject color) {
    if (raisesWhenNull(nativeHandle(color), "color is nil")) return;
    drawing(self,
            [&](CGContextRef c) { CGContextSetFillColorWithColor(c, nativeHandle<CGColorRef>(color)); });
}

void fillRect(REALobject self, REALobject rect) {
    drawing(self, [&](CGContextRef c) { CGContextFillRect(c, rectangleOf(rect)); });
}

void clearRect(REALobject self, REALobject rect) {
    drawing(self, [&](CGContextRef c) { CGContextClearRect(c, rectangleOf(rect)); });
}

void fillEllipse(REALobject self, REALobject rect) {
    drawing(self, [&](CGContextRef c) { CGContextFillEllipseInRect(c, rectangleOf(rect)); });
}

void drawImage(REALobject self, REALobject rect, REALobject image) {
    CGImageRef native = nativeHandle<CGImageRef>(image);
    if (raisesWhenNull(native, "image is nil")) return;
    drawing(self, [&](CGContextRef c) { CGContextDrawImage(c, rectangleOf(rect), native); });
}

void translate(REALobject self, double x, double y) {
    drawing(self, [&](CGContextRef c) {
        CGContextTranslateCTM(c, static_cast<CGFloat>(x), static_cast<CGFloat>(y));
    });
}

void scale(REALobject self, double x, double y) {
    drawing(self,
            [&](CGContextRef c) { CGContextScaleCTM(c, static_cast<CGFloat>(x), static_cast<CGFloat>(y)); });
}

void saveState(REALobject self) { drawing(self, CGContextSaveGState); }
void restoreState(REALobject self) { drawing(self, CGContextRestoreGState); }
void flush(REALobject self) { drawing(self, CGContextFlush); }

REALobject createImage(REALobject self) {
    return guardedInPool([&]() -> REALobject {
        if (!context(self)) return nullptr;
        Owned<CGImageRef> image(CGBitmapContextCreateImage(context(self)));
        return newCGImage(image.get());
    });
}

REALproperty properties[] = {
    handleProperty(),
    property("Width", "Integer", number<CGBitmapContextGetWidth>),
    property("Height", "Integer", number<CGBitmapContextGetHeight>),
    property("BytesPerRow", "Integer", number<CGBitmapContextGetBytesPerRow>),
};

REALmethodDefinition methods[] = {
    method("Constructor(width as integer, height as integer, space as CGColorSpaceKaz = nil)", initWithSpace),
    method("SetFillColor(color as CGColorKaz)", setFillColor),
    method("FillRect(r as CGRectKaz)", fillRect),
    method("ClearRect(r as CGRectKaz)", clearRect),
    method("FillEllipse(r as CGRectKaz)", fillEllipse),
    method("DrawImage(r as CGRectKaz, image as CGImageKaz)", drawImage),
    method("Translate(x as double, y as double)", translate),
    method("Scale(x as double, y as double)", scale),
    method("SaveState", saveState),
    method("RestoreState", restoreState),
    method("Flush", flush),
    method("CreateImage as CGImageKaz", createImage),
};

} // namespace

REALclassDefinition CGContextKazClass =
    classDefinition({.name = "CGContextKaz", .destructor = destroyWrapper}, properties, methods);

} // namespace family
