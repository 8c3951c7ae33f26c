#include <objects/wrapper.h>

#include <objc/runtime.h>

#include <cstdio>

namespace objects {

void constructWrapper(REALobject) { bridge::ensureFamily(); }

void destroyWrapper(REALobject wrapper) {
    bridge::ensureFamily();
    guardedInPool([&] {
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
    bridge::ensureFamily();
    guardedInPool([&] {
        id native = reinterpret_cast<id>(handle);
        Class expected = static_cast<Class>(objc_getClass(type.nativeClass));
        if (expected && [native isKindOfClass:expected]) {
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

CGRect rectangleOf(REALobject rect) {
    if (!rect) return CGRectMake(0, 0, 0, 0);
    const RectangleFields& fields = instanceData<RectangleFields>(rect);
    return CGRectMake(static_cast<CGFloat>(fields.x), static_cast<CGFloat>(fields.y),
                      static_cast<CGFloat>(fields.width), static_cast<CGFloat>(fields.height));
}

CGRect sourceRectangle(REALobject rect, CGRect extent) {
    CGRect source = rectangleOf(rect);
    if (source.size.width < 1) source.size.width = extent.size.width;
    if (source.size.height < 1) source.size.height = extent.size.height;
    return source;
}

REALobject newRectangle(CGRect rect) {
    REALobject object = REALnewInstance("CGRectKaz");
    if (object)
        instanceData<RectangleFields>(object) = {rect.origin.x, rect.origin.y, rect.size.width,
                                                 rect.size.height};
    return object;
}

REALobject newPoint(CGPoint point) {
    REALobject object = REALnewInstance("CGPointKaz");
    if (object) instanceData<PointFields>(object) = {point.x, point.y};
    return object;
}

REALobject newUnregistered(const char* hostClass, CFTypeRef native) {
    REALobject object = native ? bridge::newWrapper(hostClass, native) : nullptr;
    if (object) CFRetain(native);
    return object;
}

REALobject newColorSpace(CGColorSpaceRef colorSpace) {
    return newUnregistered("CGColorSpaceKaz", colorSpace);
}

REALobject newCGImage(CGImageRef image) { return newUnregistered("CGImageKaz", image); }

} // namespace objects
