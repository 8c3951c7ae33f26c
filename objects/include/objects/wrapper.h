// The object model that all wrapper classes of the plugin family share: a host object whose first data word
// holds a retained native object, or nil while the wrapper is empty.
#pragma once

#include <bridge/guard.h>
#include <bridge/text.h>
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

// What class constructors and destructors do.
void constructWrapper(REALobject wrapper);
void destroyWrapper(REALobject wrapper);

// True, and an exception raised, when the wrapper already holds an object.
bool raisesWhenInitialized(REALobject wrapper);

// True, and a NilObjectException raised, when the argument is null.
bool raisesWhenNull(const void* argument, const char* message);

// Puts a native object, whose one reference the wrapper takes over, into an empty wrapper and into the
// wrapper registry. Nil leaves the wrapper empty.
void adopt(REALobject wrapper, id native);

void constructWithHandle(const WrapperType& type, REALobject wrapper, std::int32_t handle);

// The constructor that takes a native object by its address.
/// Makes an object of a native one by its address. Raises NilObjectException for 0, and
/// UnsupportedOperationException if the native object is of another class or the number cannot be an address.
///     Dim same As New SelfClass(self.Handle)
template <const WrapperType& Type>
REALmethodDefinition constructorWithHandle() {
    return method(
        "Constructor(Handle as Integer)",
        +[](REALobject wrapper, std::int32_t handle) { constructWithHandle(Type, wrapper, handle); });
}

// The frame of constructors and factories: the family is asked for its wrapper registry and its exceptions
// before anything else. Other members run in guardedInPool() or guarded() alone.
template <class Body>
auto prepared(Body&& body) -> decltype(body()) {
    bridge::ensureFamily();
    return guardedInPool(std::forward<Body>(body));
}

// A constructor that makes its native object itself: `make` returns the object with the reference that the
// wrapper keeps.
template <class Make>
void construct(REALobject wrapper, Make&& make) {
    if (raisesWhenInitialized(wrapper)) return;
    prepared([&] { adopt(wrapper, make()); });
}

// The one wrapper of a native object, made if need be.
inline REALobject wrapped(const WrapperType& type, id native) {
    return bridge::wrapperOf(type.hostClass, native);
}

// A factory: returns the wrapper of the object that `make` returns, which is not owned.
template <class Make>
REALobject wrappedResult(const WrapperType& type, Make&& make) {
    return prepared([&] { return wrapped(type, make()); });
}

// The "description" property of every class.
REALstring description(REALobject wrapper, std::uint32_t parameter);

// Returns the NSString that `make` returns, which is not owned and may be nil, as a host string.
template <class Make>
REALstring stringResult(Make&& make) {
    return guardedInPool([&] { return CFString2RBString((CFStringRef)make()); });
}

// "Handle", in every class's property table.
/// The address of the native object, or 0 while the object is empty.
///     Print Str(self.Handle)
inline REALproperty handleProperty() { return field("Handle", "Integer", 0); }

// A property's getter: what `read` reads from the native object, which may be nil.
template <class Value, auto read>
Value getter(REALobject wrapper, std::uint32_t) {
    return guarded([&] { return static_cast<Value>(read(nativeHandle(wrapper))); });
}

} // namespace objects
