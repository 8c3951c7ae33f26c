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
    /// The bitmap's width in pixels; 0 while the object is empty.
    ///     Print Str(self.Width)
    property("Width", "Integer", number<CGBitmapContextGetWidth>),
    /// The bitmap's height in pixels; 0 while the object is empty.
    ///     Print Str(self.Height)
    property("Height", "Integer", number<CGBitmapContextGetHeight>),
    /// The bytes from one row of the bitmap to the next; 0 while the object is empty.
    ///     Print Str(self.BytesPerRow)
    property("BytesPerRow", "Integer", number<CGBitmapContextGetBytesPerRow>),
};

REALmethodDefinition methods[] = {
    /// Makes a bitmap of a size in pixels in a colour space, or in the device's RGB. Raises
    /// OutOfBoundsException for a size below 1.
    ///     Dim canvas As New CGContextKaz(64, 64, CGColorSpaceKaz.SRGB)
    method("Constructor(width as integer, height as integer, space as CGColorSpaceKaz = nil)", initWithSpace),
    /// Chooses the colour of what is filled next. Raises NilObjectException without one.
    ///     self.SetFillColor(New CGColorKaz(1, 0.8, 0))
    method("SetFillColor(color as CGColorKaz)", setFillColor),
    /// Fills a rectangle with the chosen colour.
    ///     self.FillRect(New CGRectKaz(10, 10, 40, 20))
    method("FillRect(r as CGRectKaz)", fillRect),
    /// Makes a rectangle transparent.
    ///     self.ClearRect(New CGRectKaz(20, 12, 10, 10))
    method("ClearRect(r as CGRectKaz)", clearRect),
    /// Fills the ellipse that touches the rectangle's sides.
    ///     self.FillEllipse(New CGRectKaz(60, 10, 40, 40))
    method("FillEllipse(r as CGRectKaz)", fillEllipse),
    /// Draws an image scaled to fill the rectangle. Raises NilObjectException without an image.
    ///     self.DrawImage(New CGRectKaz(0, 0, 30, 20), CGImageKaz.ImageWithFile(SamplePhoto("coffee.png")))
    method("DrawImage(r as CGRectKaz, image as CGImageKaz)", drawImage),
    /// Moves the origin of what is drawn next by x and y.
    ///     self.Translate(5, 5)
    method("Translate(x as double, y as double)", translate),
    /// Scales what is drawn next by factors along x and y.
    ///     self.Scale(2, 2)
    method("Scale(x as double, y as double)", scale),
    /// Remembers the colour and the transform for RestoreState.
    ///     self.SaveState
    method("SaveState", saveState),
    /// Goes back to the colour and the transform of the last SaveState.
    ///     self.RestoreState
    method("RestoreState", restoreState),
    /// Finishes what was drawn so far.
    ///     self.Flush
    method("Flush", flush),
    /// Returns a copy of the bitmap as an image, or Nil while the object is empty.
    ///     Print Str(self.CreateImage.Width)
    method("CreateImage as CGImageKaz", createImage),
};

} // namespace

/// A bitmap to draw into, 8 bits a component; positions are in pixels from the lower left corner. An empty
/// one ignores drawing.
///     Dim context As New CGContextKaz(120, 80)
REALclassDefinition CGContextKazClass =
    classDefinition({.name = "CGContextKaz", .destructor = destroyWrapper}, properties, methods);

} // namespace family
