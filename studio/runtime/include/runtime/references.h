// References held by C++ code and released at the end of a scope.
#pragma once

#include "runtime/runtime.h"

#include <utility>

namespace studio {

struct ObjectRef {
    REALobject handle = nullptr;
    ObjectRef() = default;
    explicit ObjectRef(REALobject owned) : handle(owned) {}
    ObjectRef(ObjectRef&& other) noexcept : handle(other.release()) {}
    ObjectRef& operator=(ObjectRef&& other) noexcept {
        std::swap(handle, other.handle);
        return *this;
    }
    ~ObjectRef() {
        if (handle) heap().release(handle);
    }
    REALobject release() { return std::exchange(handle, nullptr); }
    operator REALobject() const { return handle; }
};

struct StringRef {
    REALstring handle = nullptr;
    StringRef() = default;
    explicit StringRef(REALstring owned) : handle(owned) {}
    StringRef(StringRef&& other) noexcept : handle(other.release()) {}
    ~StringRef() {
        if (handle) heap().release(handle);
    }
    REALstring release() { return std::exchange(handle, nullptr); }
    operator REALstring() const { return handle; }
};

inline Bits retain(const Type* type, Bits bits) {
    if (type->kind == Kind::String)
        Heap::retain(bits.string);
    else if (type->isObject())
        Heap::retain(bits.object);
    return bits;
}
inline void release(const Type* type, Bits bits) {
    if (type->kind == Kind::String)
        heap().release(bits.string);
    else if (type->isObject())
        heap().release(bits.object);
}

// Bits of any type, released unless they are taken.
struct Held {
    const Type* type;
    Bits bits;
    Held(const Type* type, Bits owned) : type(type), bits(owned) {}
    Held(const Held&) = delete;
    ~Held() { release(type, bits); }
    Bits take() { return std::exchange(bits, Bits()); }
};

} // namespace studio
