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
    property("Name", "String", name),
    property("NumberOfComponents", "Integer", number<CGColorSpaceGetNumberOfComponents>),
    property("Model", "Integer", model),
};

REALmethodDefinition methods[] = {
    method("Constructor(ICCProfile as Memoryblock)", initWithProfile),
};

REALmethodDefinition sharedMethods[] = {
    method("DeviceRGB as CGColorSpaceKaz", device<CGColorSpaceCreateDeviceRGB>),
    method("DeviceGray as CGColorSpaceKaz", device<CGColorSpaceCreateDeviceGray>),
    method("DeviceCMYK as CGColorSpaceKaz", device<CGColorSpaceCreateDeviceCMYK>),
    method("SRGB as CGColorSpaceKaz", named<kCGColorSpaceSRGB>),
    method("GenericRGB as CGColorSpaceKaz", named<kCGColorSpaceGenericRGB>),
    method("GenericRGBLinear as CGColorSpaceKaz", named<kCGColorSpaceGenericRGBLinear>),
    method("AdobeRGB1998 as CGColorSpaceKaz", named<kCGColorSpaceAdobeRGB1998>),
};

} // namespace

REALclassDefinition CGColorSpaceKazClass = classDefinition(
    {.name = "CGColorSpaceKaz", .destructor = destroyWrapper}, properties, methods, {}, sharedMethods);

} // namespace family
