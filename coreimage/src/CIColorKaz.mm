// CIColorKaz: an immutable colour with components and a colour space.
#include "wrapper.h"

namespace coreimage {
namespace {

CIColor* color(REALobject self) { return nativeHandle<CIColor*>(self); }

// --- properties -------------------------------------------------------------------------------------------

std::int32_t numberOfComponents(REALobject self, std::uint32_t) {
    return guarded([&] { return static_cast<std::int32_t>([color(self) numberOfComponents]); });
}

double alpha(REALobject self, std::uint32_t) {
    return guarded([&] { return static_cast<double>([color(self) alpha]); });
}

double red(REALobject self, std::uint32_t) {
    return guarded([&] { return static_cast<double>([color(self) red]); });
}

double green(REALobject self, std::uint32_t) {
    return guarded([&] { return static_cast<double>([color(self) green]); });
}

double blue(REALobject self, std::uint32_t) {
    return guarded([&] { return static_cast<double>([color(self) blue]); });
}

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
    if (!cgColor) {
        RaiseException(bridge::kNilObject, "color is nil");
        return;
    }
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
    property("NumberOfComponents", "Integer", numberOfComponents),
    property("Alpha", "Double", alpha),
    property("Red", "Double", red),
    property("Green", "Double", green),
    property("Blue", "Double", blue),
    property("description", "String", description),
    property("StringRepresentation", "String", stringRepresentation),
};

REALmethodDefinition methods[] = {
    method("copy as CIColorKaz", copy),
    method("Constructor(Handle as Integer)", constructorWithHandle<kColor>),
    method("Constructor(ColorValue as CGColorKaz)", initWithCGColor),
    method("Constructor(Red as double, Green as Double, Blue as double)", initWithRGB),
    method("Constructor(Red as double, Green as Double, Blue as double, Alpha as Double)", initWithRGBA),
    method("ColorSpace as CGColorSpaceKaz", colorSpace),
    method("Component(index as UInt32) as double", component),
};

} // namespace

REALclassDefinition CIColorKazClass =
    classDefinition({.name = "CIColorKaz", .constructor = constructWrapper, .destructor = destroyWrapper},
                    properties, methods);

// --- global functions -------------------------------------------------------------------------------------

REALobject colorWithComponents(float r, float g, float b, float a) {
    return wrappedResult(kColor, [&] { return [CIColor colorWithRed:r green:g blue:b alpha:a]; });
}

REALobject colorWithString(REALstring text) {
    if (!text) return nullptr;
    return wrappedResult(kColor,
                         [&] { return [CIColor colorWithString:(NSString*)bridge::temporaryString(text)]; });
}

REALobject colorWithCGColor(REALobject value) {
    CGColorRef cgColor = nativeHandle<CGColorRef>(value);
    if (!cgColor) return nullptr;
    return wrappedResult(kColor, [&] { return [CIColor colorWithCGColor:cgColor]; });
}

} // namespace coreimage
