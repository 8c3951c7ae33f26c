// Handles of host objects and strings, and references that are given back at the end of a scope.
#pragma once

#include <hostapi/services.h>

#include <concepts>
#include <utility>

namespace host {

// Handles of objects: everything that begins with the object header.
template <class Handle>
concept ObjectHandle = std::same_as<Handle, REALobject> || std::same_as<Handle, REALarray> ||
    std::same_as<Handle, REALmemoryBlock> || std::same_as<Handle, REALfolderItem> ||
    std::same_as<Handle, REALpicture>;

template <class Handle>
concept CountedHandle = ObjectHandle<Handle> || std::same_as<Handle, REALstring>;

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
    explicit Held(Value received = {}) : value(received) {}
    ~Held() { unlock(value); }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;

    Value get() const { return value; }
    explicit operator bool() const { return bool(value); }

    // The value; its reference becomes the caller's.
    Value release() { return std::exchange(value, Value()); }

  private:
    Value value;
};

} // namespace host
