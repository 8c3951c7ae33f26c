// CGColorSpaceKaz: a Core Graphics colour space.
#include "support.h"

#include <bridge/memoryblocks.h>
#include <hostapi/lookup.h>

#include <dlfcn.h>

namespace family {
namespace {

CGColorSpaceRef space(REALobject self) { return nativeHandle<CGColorSpaceRef>(self); }

template <CGColorSpaceRef (*Create)()>
REALobject device() {
    return guardedInPool([] { return newColorSpace(Owned<CGColorSpaceRef>(Create()).get()); });
}

template <const CFStringRef& Name>
REALobject named() {
    return guardedInPool(
        [] { return newColorSpace(Owned<CGColorSpaceRef>(CGColorSpaceCreateWithName(Name)).get()); });
}

// Stays empty when the block holds no profile.
void initWithProfile(REALobject self, REALmemoryBlock profile) {
    if (raisesWhenInitialized(self) || raisesWhenNull(profile, "Memoryblock is nil")) return;
    guardedInPool([&] {
        instanceData<CGColorSpaceRef>(self) = CGColorSpaceCreateWithICCProfile((CFDataRef)NewNSData(profile));
    });
}

void* findInProcess(const char* name) { return dlsym(RTLD_DEFAULT, name); }

// Looked up, because systems before 10.6 lack it.
constinit host::LookedUpFunction<CFStringRef (*)(CGColorSpaceRef), findInProcess> copyName{
    "CGColorSpaceCopyName"};

REALstring name(REALobject self, std::uint32_t) {
    return stringResult(
        [&]() -> NSString* { return space(self) ? [(NSString*)copyName(space(self)) autorelease] : nil; });
}

// 0 gray, 1 RGB, 2 CMYK, 3 Lab; -1 unknown and for an empty wrapper.
std::int32_t model(REALobject self, std::uint32_t) {
    return space(self) ? static_cast<std::int32_t>(CGColorSpaceGetModel(space(self))) : -1;
}

REALproperty properties[] = {
    handleProperty(),
    /// The name of a standard space; empty for the device's and for one made from a profile that has no name.
    ///     Print self.Name
    property("Name", "String", name),
    /// The number of components without alpha: 3 for RGB, 0 while the object is empty.
    ///     Print Str(self.NumberOfComponents)
    property("NumberOfComponents", "Integer", number<CGColorSpaceGetNumberOfComponents>),
    /// What the components are: 0 gray, 1 RGB, 2 CMYK, 3 Lab; -1 if unknown or while the object is empty.
    ///     Print Str(self.Model)
    property("Model", "Integer", model),
};

REALmethodDefinition methods[] = {
    /// Makes a space from an ICC profile; it stays empty if the block holds none. Raises NilObjectException
    /// for Nil.
    ///     Print Str(CGColorSpaceKaz(New CGColorSpaceKaz(New MemoryBlock(4))).Model)
    method("Constructor(ICCProfile as Memoryblock)", initWithProfile),
};

REALmethodDefinition sharedMethods[] = {
    /// Returns the device's RGB.
    ///     Print Str(CGColorSpaceKaz.DeviceRGB.NumberOfComponents)
    method("DeviceRGB as CGColorSpaceKaz", device<CGColorSpaceCreateDeviceRGB>),
    /// Returns the device's gray.
    ///     Print Str(CGColorSpaceKaz.DeviceGray.NumberOfComponents)
    method("DeviceGray as CGColorSpaceKaz", device<CGColorSpaceCreateDeviceGray>),
    /// Returns the device's CMYK.
    ///     Print Str(CGColorSpaceKaz.DeviceCMYK.NumberOfComponents)
    method("DeviceCMYK as CGColorSpaceKaz", device<CGColorSpaceCreateDeviceCMYK>),
    /// Returns sRGB, the space of most pictures.
    ///     Print CGColorSpaceKaz.SRGB.Name
    method("SRGB as CGColorSpaceKaz", named<kCGColorSpaceSRGB>),
    /// Returns Apple's generic RGB.
    ///     Print CGColorSpaceKaz.GenericRGB.Name
    method("GenericRGB as CGColorSpaceKaz", named<kCGColorSpaceGenericRGB>),
    /// Returns Apple's generic RGB with linear components.
    ///     Print CGColorSpaceKaz.GenericRGBLinear.Name
    method("GenericRGBLinear as CGColorSpaceKaz", named<kCGColorSpaceGenericRGBLinear>),
    /// Returns Adobe RGB (1998).
    ///     Print CGColorSpaceKaz.AdobeRGB1998.Name
    method("AdobeRGB1998 as CGColorSpaceKaz", named<kCGColorSpaceAdobeRGB1998>),
};

} // namespace

/// A Core Graphics colour space: what the numbers of a colour mean.
///     Dim space As CGColorSpaceKaz = CGColorSpaceKaz.SRGB
REALclassDefinition CGColorSpaceKazClass = classDefinition(
    {.name = "CGColorSpaceKaz", .destructor = destroyWrapper}, properties, methods, {}, sharedMethods);

} // namespace family
