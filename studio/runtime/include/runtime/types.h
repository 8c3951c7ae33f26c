// The language's types, and the untyped bits of a value.
#pragma once

#include <hostapi/abi.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

namespace studio {

struct Class;

enum class Kind : std::uint8_t {
    Void,
    Nil,
    Boolean,
    Int8,
    UInt8,
    Int16,
    UInt16,
    Int32,
    UInt32,
    Int64,
    UInt64,
    Single,
    Double,
    Color,
    String,
    Variant,
    Object,
    Array,
};

// Types are interned: equal types are the same pointer.
struct Type {
    Kind kind;
    std::string name;              // as the language writes it: "Integer", "CIFilterKaz()"
    Class* cls = nullptr;          // Kind::Object, and of an enumeration
    const Type* element = nullptr; // Kind::Array
    int rank = 1;                  // Kind::Array: the number of dimensions

    bool isInteger() const { return kind >= Kind::Int8 && kind <= Kind::UInt64 && !cls; }
    bool isNumber() const { return kind >= Kind::Int8 && kind <= Kind::Double && !cls; }
    // An integer of its own type; its class holds the names.
    bool isEnumeration() const { return cls && kind >= Kind::Int8 && kind <= Kind::UInt64; }
    // Objects, arrays and variants are all a counted pointer to an object.
    bool isObject() const { return kind >= Kind::Variant; }
    bool isCounted() const { return kind >= Kind::String; }
};

// The simple types; the class table has those of classes and arrays.
const Type* simpleType(Kind kind);
// By name: "Integer", "single", ...; null for any other name.
const Type* simpleTypeNamed(std::string_view name);

// One value without its type. Integers narrower than 32 bits are kept extended to 32.
union Bits {
    std::int64_t i64;
    std::uint64_t u64;
    std::int32_t i32;
    std::uint32_t u32;
    float f32;
    double f64;
    bool boolean;
    REALstring string;
    REALobject object;

    Bits() : i64(0) {}
    static Bits of(std::int32_t v) { return with(&Bits::i32, v); }
    static Bits of(std::uint32_t v) { return with(&Bits::u32, v); }
    static Bits of(std::int64_t v) { return with(&Bits::i64, v); }
    static Bits of(std::uint64_t v) { return with(&Bits::u64, v); }
    static Bits of(float v) { return with(&Bits::f32, v); }
    static Bits of(double v) { return with(&Bits::f64, v); }
    static Bits of(bool v) { return with(&Bits::boolean, v); }
    static Bits of(REALstring v) { return with(&Bits::string, v); }
    static Bits of(REALobject v) { return with(&Bits::object, v); }

    // The member of one of the types that the language calculates in.
    template <class T>
    T& as() {
        if constexpr (std::is_same_v<T, std::int32_t>)
            return i32;
        else if constexpr (std::is_same_v<T, std::int64_t>)
            return i64;
        else if constexpr (std::is_same_v<T, float>)
            return f32;
        else
            return static_cast<T&>(f64);
    }

  private:
    template <class T>
    static Bits with(T Bits::*member, T v) {
        Bits bits;
        bits.*member = v;
        return bits;
    }
};

} // namespace studio
