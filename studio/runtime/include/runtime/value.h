// A value of the language with its type, holding its own reference.
#pragma once

#include "runtime/types.h"

#include <stdexcept>
#include <string>
#include <utility>

namespace studio {

// A call that cannot be made: no such class or method, no overload fits, a value of the wrong type.
class UsageError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

class Value {
  public:
    Value() : type_(simpleType(Kind::Nil)) {}
    Value(std::nullptr_t) : Value() {}
    Value(bool v) : type_(simpleType(Kind::Boolean)), bits_(Bits::of(v)) {}
    Value(int v) : type_(simpleType(Kind::Int32)), bits_(Bits::of(std::int32_t(v))) {}
    Value(long v) : Value(int(v)) {}
    Value(unsigned v) : type_(simpleType(Kind::UInt32)), bits_(Bits::of(std::uint32_t(v))) {}
    Value(long long v) : type_(simpleType(Kind::Int64)), bits_(Bits::of(std::int64_t(v))) {}
    Value(float v) : type_(simpleType(Kind::Single)), bits_(Bits::of(v)) {}
    Value(double v) : type_(simpleType(Kind::Double)), bits_(Bits::of(v)) {}
    Value(const char* text) : Value(std::string_view(text)) {}
    Value(const std::string& text) : Value(std::string_view(text)) {}
    Value(std::string_view utf8);

    // Takes over the caller's reference.
    static Value adopt(const Type* type, Bits bits) { return Value(type, bits); }
    static Value adopt(REALobject object);
    // A result of calling a service or a plugin's function directly: takes over its reference.
    static Value received(REALobject object);
    // Adds a reference of its own.
    static Value share(const Type* type, Bits bits);
    static Value share(REALobject object);
    static Value color(std::uint32_t argb);
    static Value string(std::string_view bytes, std::uint32_t encoding);

    Value(const Value& other);
    Value(Value&& other) noexcept : type_(other.type_), bits_(other.bits_) { other.bits_ = Bits(); }
    Value& operator=(Value other) noexcept {
        std::swap(type_, other.type_);
        std::swap(bits_, other.bits_);
        return *this;
    }
    ~Value();

    const Type* type() const { return type_; }
    Bits bits() const { return bits_; }
    Bits release() { return std::exchange(bits_, Bits()); } // the caller now owns the reference

    bool isNil() const; // nil objects; an empty string is not nil
    // Converted as the language converts variants.
    bool boolean() const;
    std::int32_t integer() const;
    std::int64_t int64() const;
    double number() const;
    std::string text() const; // UTF-8
    // Borrowed handles; null unless the value is of that kind.
    REALobject object() const { return type_->isObject() ? bits_.object : nullptr; }
    REALstring stringHandle() const { return type_->kind == Kind::String ? bits_.string : nullptr; }
    std::string className() const; // "" for nil and for values that are not objects

    // Arrays.
    int count() const;
    Value at(int index) const;

    // A word of an object's instance data, and its address.
    void* data(int offset = 0) const;
    std::uint32_t word(int index = 0) const { return static_cast<const std::uint32_t*>(data())[index]; }

  private:
    Value(const Type* type, Bits bits) : type_(type), bits_(bits) {}

    const Type* type_;
    Bits bits_;
};

} // namespace studio
