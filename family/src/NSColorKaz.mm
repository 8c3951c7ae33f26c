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
    property("Red", "Double", read<red>),
    property("Green", "Double", read<green>),
    property("Blue", "Double", read<blue>),
    property("Alpha", "Double", read<alpha>),
    property("Description", "String", description),
};

REALmethodDefinition methods[] = {
    method("Constructor(red as double, green as double, blue as double, alpha as double = 1.0)",
           initWithRGBA),
};

} // namespace

REALclassDefinition NSColorKazClass =
    classDefinition({.name = "NSColorKaz", .constructor = constructWrapper, .destructor = destroyWrapper},
                    properties, methods);

} // namespace family
