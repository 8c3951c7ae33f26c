// The object model that all wrapper classes share: a host object whose first data word holds a retained
// native object, or nil while the wrapper is empty.
#pragma once

#include <CoreGraphics/CoreGraphics.h>
#include <bridge/containers.h>
#include <bridge/guard.h>
#include <bridge/strings.h>
#include <bridge/wrapping.h>
#include <hostapi/records.h>

namespace objects {

using bridge::guarded;
using bridge::guardedInPool;
using bridge::instanceData;
using bridge::nativeHandle;
using host::accessor;
using host::classDefinition;
using host::constant;
using host::field;
using host::method;
using host::property;

// The host class of a wrapper and the Cocoa class of what it holds.
struct WrapperType {
    const char* hostClass;
    const char* nativeClass;
};

// Class constructor and destructor.
void constructWrapper(REALobject wrapper);
void destroyWrapper(REALobject wrapper);

// True, and the exception raised, when the wrapper already holds an object.
bool raisesWhenInitialized(REALobject wrapper);

// Puts a native object, whose one reference the wrapper takes over, into an empty wrapper and the registry.
// Nil leaves the wrapper empty.
void adopt(REALobject wrapper, id native);

// "Constructor(Handle as Integer)".
void constructWithHandle(const WrapperType& type, REALobject wrapper, std::int32_t handle);

template <const WrapperType& Type>
void constructorWithHandle(REALobject wrapper, std::int32_t handle) {
    constructWithHandle(Type, wrapper, handle);
}

// The frame of a constructor that makes its native object itself: `make` returns it with the reference that
// the wrapper keeps.
template <class Make>
void construct(REALobject wrapper, Make&& make) {
    if (raisesWhenInitialized(wrapper)) return;
    bridge::ensureFamily();
    guardedInPool([&] { adopt(wrapper, make()); });
}

// The factory: the one wrapper of a native object.
inline REALobject wrapped(const WrapperType& type, id native) {
    return bridge::wrapperOf(type.hostClass, native);
}

// The frame of a function that returns what `make` makes, an object it does not own, through the factory.
template <class Make>
REALobject wrappedResult(const WrapperType& type, Make&& make) {
    bridge::ensureFamily();
    return guardedInPool([&] { return wrapped(type, make()); });
}

// Fills an empty object array with the wrappers that `wrap` finds for the objects in the NSArray that `list`
// returns.
template <class List>
REALarray filledWithWrappers(REALarray array, List&& list, REALobject (*wrap)(id native)) {
    bridge::ensureFamily();
    guardedInPool([&] { FillObjectArray(array, list(), wrap); });
    return array;
}

// The frame of a function that returns such an array: always an array.
template <class List>
REALarray wrappersResult(List&& list, REALobject (*wrap)(id native)) {
    return filledWithWrappers(REALCreateArray(kREALArrayObject, -1), list, wrap);
}

// The "description" property of every class.
REALstring description(REALobject wrapper, std::uint32_t parameter);

// A string result: `make` returns an NSString that it does not own, or nil.
template <class Make>
REALstring stringResult(Make&& make) {
    bridge::ensureFamily();
    return guardedInPool([&] { return CFString2RBString((CFStringRef)make()); });
}

// "Handle", in every class's property table.
inline REALproperty handleProperty() { return field("Handle", "Integer", 0); }

// The fields of the family's value classes.
struct RectangleFields {
    double x, y, width, height;
};
struct PointFields {
    double x, y;
};

// The rectangle of a CGRectKaz, narrowed to single precision; all zero for null.
CGRect rectangleOf(REALobject rect);

// The part of an image that CreateCGImage renders: the rectangle, with each size below 1 taken from the
// extent.
CGRect sourceRectangle(REALobject rect, CGRect extent);

// New objects of the family's classes with a reference for the caller; null when the family lacks the class.
REALobject newRectangle(CGRect rect);
REALobject newPoint(CGPoint point);
REALobject newColorSpace(CGColorSpaceRef colorSpace); // null for null; retains the colour space
REALobject newCGImage(CGImageRef image);              // null for null; retains the image

// A new wrapper of `native`, which it retains and does not register; null for null.
REALobject newUnregistered(const char* hostClass, CFTypeRef native);

} // namespace objects
