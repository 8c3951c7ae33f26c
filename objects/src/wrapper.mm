// The object model of the wrapper classes.
#include <objects/wrapper.h>

#include <objc/runtime.h>

#include <cstdio>

namespace objects {

namespace {

// Whether an object could be at the address. New CIVectorKaz(1) gives a number where an address is expected:
// the first page of memory and the last one hold no objects, and objects lie at multiples of four.
bool mayBeObject(std::int32_t address) {
    constexpr std::int32_t kPage = 4096;
    return (address < -kPage || address >= kPage) && address % 4 == 0;
}

} // namespace

void constructWrapper(REALobject) { bridge::ensureFamily(); }

void destroyWrapper(REALobject wrapper) {
    prepared([&] {
        id& handle = instanceData<id>(wrapper);
        if (!handle) return;
        bridge::unregisterWrapper(handle);
        [handle release];
        handle = nil;
    });
}

bool raisesWhenInitialized(REALobject wrapper) {
    if (!nativeHandle(wrapper)) return false;
    RaiseException(bridge::kUnsupportedOperation,
                   "Constructor called too often. Object is already initialized.");
    return true;
}

bool raisesWhenNull(const void* argument, const char* message) {
    if (argument) return false;
    RaiseException(bridge::kNilObject, message);
    return true;
}

void adopt(REALobject wrapper, id native) {
    if (!native) return;
    instanceData<id>(wrapper) = native;
    bridge::registerWrapper(native, wrapper);
}

void constructWithHandle(const WrapperType& type, REALobject wrapper, std::int32_t handle) {
    if (raisesWhenInitialized(wrapper)) return;
    char message[100];
    if (handle == 0) {
        std::snprintf(message, sizeof message, "%s Reference is nil.", type.nativeClass);
        RaiseException(bridge::kNilObject, message);
        return;
    }
    prepared([&] {
        id native = reinterpret_cast<id>(handle);
        Class expected = static_cast<Class>(objc_getClass(type.nativeClass));
        if (expected && mayBeObject(handle) && [native isKindOfClass:expected]) {
            adopt(wrapper, [native retain]);
        } else {
            std::snprintf(message, sizeof message, "Reference is not a %s", type.nativeClass);
            RaiseException(bridge::kUnsupportedOperation, message);
        }
    });
}

REALstring description(REALobject wrapper, std::uint32_t) {
    return stringResult([&] { return [nativeHandle(wrapper) description]; });
}

} // namespace objects
