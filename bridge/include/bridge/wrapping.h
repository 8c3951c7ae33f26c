// The layout that every wrapper object of the family shares: its first instance data word is the native
// handle.
#pragma once

#include <bridge/registry.h>

#import <Foundation/Foundation.h>

namespace bridge {

// The instance data of a host object, seen as a record of the caller's.
template <class Data>
Data& instanceData(REALobject object) {
    return *reinterpret_cast<Data*>(reinterpret_cast<char*>(object) + kREALInstanceDataOffset);
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
    REALobject wrapper = REALnewInstance(hostClass);
    if (wrapper) instanceData<const void*>(wrapper) = native;
    return wrapper;
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
