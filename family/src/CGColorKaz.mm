// CGColorKaz: a Core Graphics colour.
#include "support.h"

#include <hostapi/arrays.h>

#include <cstdlib>

namespace family {
namespace {

CGColorRef color(REALobject self) { return nativeHandle<CGColorRef>(self); }

void initWithRGBA(REALobject self, double red, double green, double blue, double alpha) {
    if (raisesWhenInitialized(self)) return;
    guardedInPool([&] {
        Owned<CGColorSpaceRef> space(CGColorSpaceCreateDeviceRGB());
        const CGFloat components[] = {static_cast<CGFloat>(red), static_cast<CGFloat>(green),
                                      static_cast<CGFloat>(blue), static_cast<CGFloat>(alpha)};
        instanceData<CGColorRef>(self) = CGColorCreate(space.get(), components);
    });
}

// The components are the colour space's, then alpha.
void initWithComponents(REALobject self, REALobject space, REALarray components) {
    if (raisesWhenInitialized(self)) return;
    CGColorSpaceRef native = nativeHandle<CGColorSpaceRef>(space);
    if (raisesWhenNull(native, "CGColorSpace is nil")) return;
    std::int32_t count = REALGetArrayUBound(components) + 1;
    std::int32_t wanted = static_cast<std::int32_t>(CGColorSpaceGetNumberOfComponents(native)) + 1;
    if (count != wanted) {
        RaiseException(bridge::kOutOfBounds,
                       "The array needs one value for each component, and one for alpha.");
        return;
    }
    guardedInPool([&] {
        host::Entry<void*, std::free> block(std::calloc(static_cast<std::size_t>(count), sizeof(CGFloat)));
        CGFloat* values = static_cast<CGFloat*>(block.get());
        if (!values) return;
        for (std::int32_t i = 0; i < count; ++i)
            values[i] = static_cast<CGFloat>(host::arrayValue<double>(components, i));
        instanceData<CGColorRef>(self) = CGColorCreate(native, values);
    });
}

double alpha(REALobject self, std::uint32_t) { return color(self) ? CGColorGetAlpha(color(self)) : 0.0; }

double component(REALobject self, std::int32_t index) {
    std::int32_t count = number<CGColorGetNumberOfComponents>(self, 0);
    if (!color(self)) return 0.0;
    if (index < 0 || index >= count) {
        RaiseOutOfBoundsException(index, 0, count, "index", "Component");
        return 0.0;
    }
    return CGColorGetComponents(color(self))[index];
}

REALobject colorSpace(REALobject self) {
    return color(self) ? newColorSpace(CGColorGetColorSpace(color(self))) : nullptr;
}

REALproperty properties[] = {
    handleProperty(),
    /// The number of components with alpha: 4 for RGB, 0 while the object is empty.
    ///     Print Str(self.NumberOfComponents)
    property("NumberOfComponents", "Integer", number<CGColorGetNumberOfComponents>),
    /// Opacity from 0 (transparent) to 1; 0 while the object is empty.
    ///     Print Str(self.Alpha)
    property("Alpha", "Double", alpha),
};

REALmethodDefinition methods[] = {
    /// Makes a colour of the device's RGB from components from 0 to 1.
    ///     Dim glass As New CGColorKaz(0, 0.5, 1, 0.5)
    method("Constructor(red as double, green as double, blue as double, alpha as double = 1.0)",
           initWithRGBA),
    /// Makes a colour in a colour space from its components and then alpha. Raises NilObjectException without
    /// a space, and OutOfBoundsException for another number of values.
    ///     Dim values() As Double = Array(0.5, 1.0)
    ///     Dim gray As New CGColorKaz(CGColorSpaceKaz.DeviceGray, values)
    method("Constructor(space as CGColorSpaceKaz, components() as double)", initWithComponents),
    /// The component at an index from 0, alpha last. Raises OutOfBoundsException outside of them.
    ///     Print Str(self.Component(0))
    method("Component(index as Integer) as Double", component),
    /// The colour's colour space, or Nil while the object is empty.
    ///     Print Str(self.ColorSpace.Model)
    method("ColorSpace as CGColorSpaceKaz", colorSpace),
};

} // namespace

/// A Core Graphics colour: components in a colour space, and alpha.
///     Dim tint As New CGColorKaz(1, 0.5, 0.25)
REALclassDefinition CGColorKazClass =
    classDefinition({.name = "CGColorKaz", .destructor = destroyWrapper}, properties, methods);

} // namespace family
