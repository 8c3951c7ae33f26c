// Handles of host objects and strings, and references that are given back at the end of a scope.
#pragma once

#include <hostapi/ledger.h>
#include <hostapi/services.h>

#include <type_traits>
#include <utility>

namespace host {

// Handles of objects: everything that begins with the object header.
template <class Handle>
concept ObjectHandle = std::is_same_v<Handle, REALobject> || std::is_same_v<Handle, REALarray> ||
    std::is_same_v<Handle, REALmemoryBlock> || std::is_same_v<Handle, REALfolderItem> ||
    std::is_same_v<Handle, REALpicture>;

template <class Handle>
concept CountedHandle = ObjectHandle<Handle> || std::is_same_v<Handle, REALstring>;

template <ObjectHandle Handle>
REALobject asObject(Handle handle) {
    return reinterpret_cast<REALobject>(handle);
}

// Locks a string or an object and returns it. Null and values that have no reference count are left alone.
template <class Value>
Value locked(Value value) {
    if constexpr (ObjectHandle<Value>) {
        if (value) REALLockObject(asObject(value));
    } else if constexpr (CountedHandle<Value>) {
        if (value) REALLockString(value);
    }
    return value;
}

// Unlocks a string or an object. Null and values that have no reference count are left alone. A host that
// cannot lock does not count what the plugin takes: nothing is given back to it, since that would free what
// others hold.
template <class Value>
void unlock(Value value) {
    if constexpr (ObjectHandle<Value>) {
        if (value && REALLockObject.resolve()) REALUnlockObject(asObject(value));
    } else if constexpr (CountedHandle<Value>) {
        if (value && REALLockString.resolve()) REALUnlockString(value);
    }
}

// Owns the reference that a value came with, and gives it back at the end of the scope, even when Cocoa
// raises.
template <class Value>
class Held {
  public:
    explicit Held(Value received) : value(received) {}
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;

    Value get() const { return value; }

    // The value; its reference becomes the caller's.
    Value release() { return value; }

  private:
    Value value; // has no reference count
};

template <CountedHandle Value>
class Held<Value> : public Entry<Value, unlock<Value>> {
  public:
    using Entry<Value, unlock<Value>>::Entry;
};

} // namespace host
