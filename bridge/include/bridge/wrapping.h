// Wrappers: host objects whose first instance data word is the handle of a native object.
#pragma once

#include <bridge/registry.h>

#import <Foundation/Foundation.h>

@class NSImage;

namespace bridge {

// The instance data of a host object, seen as a record of the caller's.
template <class Data>
Data& instanceData(REALobject object) {
    return *reinterpret_cast<Data*>(reinterpret_cast<char*>(object) + kREALInstanceDataOffset);
}

// A new object of that host class whose instance data begins with `data`, with a reference for the caller;
// null when the class is not known.
template <class Data>
REALobject newObject(const char* hostClass, const Data& data) {
    REALobject object = REALnewInstance(hostClass);
    if (object) instanceData<Data>(object) = data;
    return object;
}

// The native handle of a wrapper; nil for a null wrapper.
template <class Native = id>
Native nativeHandle(const void* wrapper) {
    if (!wrapper) return nullptr;
    return (Native)instanceData<void*>(static_cast<REALobject>(const_cast<void*>(wrapper)));
}

// A new wrapper of that host class that takes over one reference to `native`; null when the class is not
// known, and then the reference stays the caller's.
inline REALobject newWrapper(const char* hostClass, const void* native) {
    return newObject(hostClass, native);
}

// The one wrapper of a native object, with a reference for the caller: the registered one, or a new one that
// retains the object and is registered. Null for nil and for a class that the host does not know.
inline REALobject wrapperOf(const char* hostClass, id native) {
    if (!native) return nullptr;
    if (REALobject known = lockRegisteredWrapper(native)) return known;
    REALobject wrapper = newWrapper(hostClass, native);
    if (wrapper) {
        [native retain];
        registerWrapper(native, wrapper);
    }
    return wrapper;
}

} // namespace bridge

// The one wrapper of a Cocoa object whose class belongs to another part of the family; null when that part is
// not loaded.
REALobject NewNSImageKaz(NSImage* image);
REALobject NewNSAffineTransformKaz(NSAffineTransform* transform);
