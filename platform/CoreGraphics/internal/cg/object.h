// The objects behind the opaque types of Core Graphics and of the frameworks built on it.
//
// Each is an Objective-C object of the class __NSCFType, which can be retained, released and put into Cocoa
// collections like any other, and holds a C++ Payload. The C functions can therefore be written in C++.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <atomic>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>

#define CG_INTERNAL __attribute__((visibility("default")))

namespace cg {

/// The number of live instances of one class, for leak checks. Make them static; they register themselves.
class CG_INTERNAL LiveCount {
  public:
    explicit LiveCount(const char* name) noexcept;
    void born() { count_.fetch_add(1, std::memory_order_relaxed); }
    void gone() { count_.fetch_sub(1, std::memory_order_relaxed); }

    const char* name() const { return name_; }
    int count() const { return count_.load(std::memory_order_relaxed); }
    /// Goes through all counts: first(), then next() until null.
    static const LiveCount* first();
    const LiveCount* next() const { return next_; }

  private:
    const char* name_;
    const LiveCount* next_;
    std::atomic<int> count_ = 0;
};

/// The C++ object that a reference holds.
class CG_INTERNAL Payload {
  public:
    /// `count` may be null for objects that live as long as the process.
    explicit Payload(LiveCount* count) : count_(count) {
        if (count_) count_->born();
    }
    Payload(const Payload&) = delete;
    Payload& operator=(const Payload&) = delete;
    virtual ~Payload() {
        if (count_) count_->gone();
    }

    /// Such as "CGImage".
    virtual const char* typeName() const = 0;
    /// Appended to the description; may be empty.
    virtual std::string detail() const { return {}; }
    virtual bool equals(const Payload& other) const { return this == &other; }
    virtual std::size_t hash() const { return reinterpret_cast<std::size_t>(this) >> 4; }

  private:
    LiveCount* count_;
};

/// A new object with one reference.
CG_INTERNAL CFTypeRef makeObject(std::unique_ptr<Payload> payload);
/// Null for null and for any object that was not made by makeObject.
CG_INTERNAL Payload* payloadOf(CFTypeRef object);

/// The payload behind a reference of the type T::Ref; null for null and for an object of another type.
template <class T>
T* get(CFTypeRef object) {
    return dynamic_cast<T*>(payloadOf(object));
}

/// Runs `body` and returns its result, or an empty one if memory is short or an argument is invalid. For the
/// C functions, which must not throw. (In C++ sources only: Objective-C++ code cannot catch C++ exceptions.)
template <class Body>
auto guarded(Body body) noexcept -> decltype(body()) {
    using Result = decltype(body());
    try {
        return body();
    } catch (const std::bad_alloc&) {
        return Result();
    } catch (const std::logic_error&) {
        return Result();
    } catch (...) { // Cocoa's, raised below when memory is short
        return Result();
    }
}

/// A new object holding a T; null when T's constructor throws.
template <class T, class... Args>
typename T::Ref make(Args&&... args) noexcept {
    return guarded([&] {
        return static_cast<typename T::Ref>(
            const_cast<void*>(makeObject(std::make_unique<T>(std::forward<Args>(args)...))));
    });
}

/// A strong reference: retains the object that it is given, and releases it at the end.
template <class Ref>
class Retained {
  public:
    Retained() = default;
    Retained(Ref ref) : ref_(ref) {
        if (ref_) CFRetain(ref_);
    }
    Retained(const Retained& other) : Retained(other.ref_) {}
    Retained(Retained&& other) noexcept : ref_(std::exchange(other.ref_, nullptr)) {}
    Retained& operator=(Retained other) noexcept {
        std::swap(ref_, other.ref_);
        return *this;
    }
    ~Retained() {
        if (ref_) CFRelease(ref_);
    }
    /// Takes over a reference that the caller owns.
    static Retained adopt(Ref ref) {
        Retained kept;
        kept.ref_ = ref;
        return kept;
    }
    /// Hands the reference over to the caller.
    Ref release() { return std::exchange(ref_, nullptr); }
    Ref get() const { return ref_; }
    explicit operator bool() const { return ref_ != nullptr; }

  private:
    Ref ref_ = nullptr;
};

} // namespace cg
