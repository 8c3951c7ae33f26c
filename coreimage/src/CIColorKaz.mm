// CIColorKaz: an immutable colour with components and a colour space.
#include "wrapper.h"

namespace coreimage {
namespace {

CIColor* color(REALobject self) { return nativeHandle<CIColor*>(self); }

// --- properties -------------------------------------------------------------------------------------------

REALstring stringRepresentation(REALobject self, std::uint32_t) {
    return stringResult([&] { return [color(self) stringRepresentation]; });
}

// --- methods ----------------------------------------------------------------------------------------------

REALobject copy(REALobject self) {
    return wrappedResult(kColor, [&] { return [[color(self) copyWithZone:nullptr] autorelease]; });
}

void initWithCGColor(REALobject self, REALobject colorValue) {
    if (raisesWhenInitialized(self)) return;
    CGColorRef cgColor = nativeHandle<CGColorRef>(colorValue);
    if (raisesWhenNull(cgColor, "color is nil")) return;
    construct(self, [&] { return [[CIColor alloc] initWithCGColor:cgColor]; });
}

void initWithRGB(REALobject self, double r, double g, double b) {
    construct(self, [&] {
        return [[CIColor colorWithRed:static_cast<CGFloat>(r)
                                green:static_cast<CGFloat>(g)
                                 blue:static_cast<CGFloat>(b)] retain];
    });
}

void initWithRGBA(REALobject self, double r, double g, double b, double a) {
    construct(self, [&] {
        return [[CIColor colorWithRed:static_cast<CGFloat>(r)
                                green:static_cast<CGFloat>(g)
                                 blue:static_cast<CGFloat>(b)
                                alpha:static_cast<CGFloat>(a)] retain];
    });
}

REALobject colorSpace(REALobject self) {
    return guarded([&] { return newColorSpace([color(self) colorSpace]); });
}

double component(REALobject self, std::uint32_t index) {
    return guarded([&]() -> double {
        if (!color(self)) return 0.0;
        std::uint32_t count = static_cast<std::uint32_t>([color(self) numberOfComponents]);
        if (index >= count) {
            RaiseOutOfBoundsException(index, 0, count, "index", "Component");
            return 0.0;
        }
        return [color(self) components][index];
    });
}

// --- tables -----------------------------------------------------------------------------------------------

REALproperty properties[] = {
    handleProperty(),
    /// The number of components with alpha: 4 for RGB, 0 while the object is empty.
    ///     Print Str(self.NumberOfComponents)
    property("NumberOfComponents", "Integer",
             getter<std::int32_t, [](CIColor* c) { return [c numberOfComponents]; }>),
    /// Opacity from 0 (transparent) to 1; 0 while the object is empty.
    ///     Print Str(self.Alpha)
    property("Alpha", "Double", getter<double, [](CIColor* c) { return [c alpha]; }>),
    /// The red component, usually from 0 to 1; 0 while the object is empty.
    ///     Print Str(self.Red)
    property("Red", "Double", getter<double, [](CIColor* c) { return [c red]; }>),
    /// The green component, usually from 0 to 1; 0 while the object is empty.
    ///     Print Str(self.Green)
    property("Green", "Double", getter<double, [](CIColor* c) { return [c green]; }>),
    /// The blue component, usually from 0 to 1; 0 while the object is empty.
    ///     Print Str(self.Blue)
    property("Blue", "Double", getter<double, [](CIColor* c) { return [c blue]; }>),
    /// The colour as Core Image describes it, for debugging.
    ///     Print self.description
    property("description", "String", description),
    /// The components as text separated by spaces, as NewCIColorWithStringKaz reads them.
    ///     Print self.StringRepresentation
    property("StringRepresentation", "String", stringRepresentation),
};

REALmethodDefinition methods[] = {
    /// A colour with the same components; since colours never change, it may be the same object.
    ///     Print self.copy.StringRepresentation
    method("copy as CIColorKaz", copy),
    constructorWithHandle<kColor>(),
    /// Makes the colour from a Core Graphics colour in its own colour space. Raises NilObjectException
    /// without one.
    ///     Print CIColorKaz(New CIColorKaz(New CGColorKaz(0, 0, 1))).StringRepresentation
    method("Constructor(ColorValue as CGColorKaz)", initWithCGColor),
    /// Makes an opaque colour from red, green and blue, each from 0 to 1.
    ///     Dim orange As New CIColorKaz(1, 0.5, 0)
    method("Constructor(Red as double, Green as Double, Blue as double)", initWithRGB),
    /// Makes a colour from red, green, blue and alpha, each from 0 to 1.
    ///     Dim glass As New CIColorKaz(0.2, 0.4, 1, 0.5)
    method("Constructor(Red as double, Green as Double, Blue as double, Alpha as Double)", initWithRGBA),
    /// The colour's own colour space, or Nil while the object is empty.
    ///     Print self.ColorSpace.Name
    method("ColorSpace as CGColorSpaceKaz", colorSpace),
    /// The component at an index from 0, alpha last. Raises OutOfBoundsException beyond the last one.
    ///     Print Str(self.Component(1))
    method("Component(index as UInt32) as double", component),
};

void CIColorConstructor(REALobject self) { constructWrapper(self); }
void CIColorDestructor(REALobject self) { destroyWrapper(self); }

} // namespace

/// A colour with its components and colour space; it never changes.
///     Dim tint As New CIColorKaz(1, 0.5, 0.25, 0.8)
REALclassDefinition CIColorKazClass = classDefinition(
    {.name = "CIColorKaz", .constructor = CIColorConstructor, .destructor = CIColorDestructor}, properties,
    methods);

// --- global functions -------------------------------------------------------------------------------------

REALobject colorWithComponents(float r, float g, float b, float a) {
    return wrappedResult(kColor, [&] { return [CIColor colorWithRed:r green:g blue:b alpha:a]; });
}

REALobject colorWithString(REALstring text) {
    if (!text) return nullptr;
    return wrappedResult(kColor, [&] { return [CIColor colorWithString:bridge::temporaryString(text)]; });
}

REALobject colorWithCGColor(REALobject value) {
    CGColorRef cgColor = nativeHandle<CGColorRef>(value);
    if (!cgColor) return nullptr;
    return wrappedResult(kColor, [&] { return [CIColor colorWithCGColor:cgColor]; });
}

} // namespace coreimage
