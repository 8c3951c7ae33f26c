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
    property("NumberOfComponents", "Integer",
             getter<std::int32_t, [](CIColor* c) { return [c numberOfComponents]; }>),
    property("Alpha", "Double", getter<double, [](CIColor* c) { return [c alpha]; }>),
    property("Red", "Double", getter<double, [](CIColor* c) { return [c red]; }>),
    property("Green", "Double", getter<double, [](CIColor* c) { return [c green]; }>),
    property("Blue", "Double", getter<double, [](CIColor* c) { return [c blue]; }>),
    property("description", "String", description),
    property("StringRepresentation", "String", stringRepresentation),
};

REALmethodDefinition methods[] = {
    method("copy as CIColorKaz", copy),
    constructorWithHandle<kColor>(),
    method("Constructor(ColorValue as CGColorKaz)", initWithCGColor),
    method("Constructor(Red as double, Green as Double, Blue as double)", initWithRGB),
    method("Constructor(Red as double, Green as Double, Blue as double, Alpha as Double)", initWithRGBA),
    method("ColorSpace as CGColorSpaceKaz", colorSpace),
    method("Component(index as UInt32) as double", component),
};

void CIColorConstructor(REALobject self) { constructWrapper(self); }
void CIColorDestructor(REALobject self) { destroyWrapper(self); }

} // namespace

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
