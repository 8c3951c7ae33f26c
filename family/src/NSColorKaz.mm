// NSColorKaz: a Cocoa colour.
#include "support.h"

#import <AppKit/AppKit.h>

namespace family {
namespace {

NSColor* color(REALobject self) { return nativeHandle<NSColor*>(self); }

void initWithRGBA(REALobject self, double red, double green, double blue, double alpha) {
    construct(self, [&] {
        return [[NSColor colorWithDeviceRed:static_cast<CGFloat>(red)
                                      green:static_cast<CGFloat>(green)
                                       blue:static_cast<CGFloat>(blue)
                                      alpha:static_cast<CGFloat>(alpha)] retain];
    });
}

// A colour of another model raises Cocoa's exception, which arrives as the host's.
template <CGFloat (*component)(NSColor*)>
double read(REALobject self, std::uint32_t) {
    return guardedInPool([&] { return static_cast<double>(component(color(self))); });
}

CGFloat red(NSColor* c) { return [c redComponent]; }
CGFloat green(NSColor* c) { return [c greenComponent]; }
CGFloat blue(NSColor* c) { return [c blueComponent]; }
CGFloat alpha(NSColor* c) { return [c alphaComponent]; }

REALproperty properties[] = {
    handleProperty(),
    /// The red component from 0 to 1; 0 while the object is empty.
    ///     Print Str(self.Red)
    property("Red", "Double", read<red>),
    /// The green component from 0 to 1; 0 while the object is empty.
    ///     Print Str(self.Green)
    property("Green", "Double", read<green>),
    /// The blue component from 0 to 1; 0 while the object is empty.
    ///     Print Str(self.Blue)
    property("Blue", "Double", read<blue>),
    /// Opacity from 0 to 1; 0 while the object is empty.
    ///     Print Str(self.Alpha)
    property("Alpha", "Double", read<alpha>),
    /// The colour as Cocoa describes it.
    ///     Print self.Description
    property("Description", "String", description),
};

REALmethodDefinition methods[] = {
    /// Makes a colour of the device's RGB from components from 0 to 1.
    ///     Dim glass As New NSColorKaz(0, 0.5, 1, 0.5)
    method("Constructor(red as double, green as double, blue as double, alpha as double = 1.0)",
           initWithRGBA),
};

} // namespace

/// A Cocoa colour. Its components raise Cocoa's exception if the colour is not RGB.
///     Dim color As New NSColorKaz(1, 0.5, 0)
REALclassDefinition NSColorKazClass =
    classDefinition({.name = "NSColorKaz", .constructor = constructWrapper, .destructor = destroyWrapper},
                    properties, methods);

} // namespace family
