// Handles of host objects and strings, and references that end with a scope.
#pragma once

#include <hostapi/services.h>

#include <concepts>
#include <utility>

namespace host {

// The handles of things that are objects: each begins with the object header.
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

// Takes one more reference; null is ignored, and so are values that are not counted.
template <class Value>
Value locked(Value value) {
    if constexpr (ObjectHandle<Value>) {
        if (value) REALLockObject(asObject(value));
    } else if constexpr (CountedHandle<Value>) {
        if (value) REALLockString(value);
    }
    return value;
}

// Gives one reference back; null is ignored, and so are values that are not counted.
template <class Value>
void unlock(Value value) {
    if constexpr (ObjectHandle<Value>) {
        if (value) REALUnlockObject(asObject(value));
    } else if constexpr (CountedHandle<Value>) {
        if (value) REALUnlockString(value);
    }
}

// A value that came with a reference, which is given back at the end of the scope, also when Cocoa raises.
template <class Value>
class Held {
  public:
    explicit Held(Value received = {}) : value(received) {}
    ~Held() { unlock(value); }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;

    Value get() const { return value; }
    explicit operator bool() const { return bool(value); }

    // The value with its reference, which becomes the caller's.
    Value release() { return std::exchange(value, Value()); }

  private:
    Value value;
};

} // namespace host
