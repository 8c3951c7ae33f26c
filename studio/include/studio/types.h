// The types of the language and the untyped bits of their values.
#pragma once

#include <hostapi/abi.h>

#include <cstdint>
#include <string>
#include <string_view>

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

// Types are interned: two equal types are one pointer.
struct Type {
    Kind kind;
    std::string name;              // as the language writes it: "Integer", "CIFilterKaz()"
    Class* cls = nullptr;          // Kind::Object
    const Type* element = nullptr; // Kind::Array

    bool isInteger() const { return kind >= Kind::Int8 && kind <= Kind::UInt64; }
    bool isNumber() const { return kind >= Kind::Int8 && kind <= Kind::Double; }
    // Objects, arrays and variants are one pointer to an object, counted the same way.
    bool isObject() const { return kind >= Kind::Variant; }
    bool isCounted() const { return kind >= Kind::String; }
};

// The simple types; classes and arrays come from the host's class table.
const Type* simpleType(Kind kind);
// "Integer", "single", ...: null when the name is no simple type's.
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
    static Bits of(std::int32_t v) {
        Bits b;
        b.i32 = v;
        return b;
    }
    static Bits of(std::uint32_t v) {
        Bits b;
        b.u32 = v;
        return b;
    }
    static Bits of(std::int64_t v) {
        Bits b;
        b.i64 = v;
        return b;
    }
    static Bits of(std::uint64_t v) {
        Bits b;
        b.u64 = v;
        return b;
    }
    static Bits of(float v) {
        Bits b;
        b.f32 = v;
        return b;
    }
    static Bits of(double v) {
        Bits b;
        b.f64 = v;
        return b;
    }
    static Bits of(bool v) {
        Bits b;
        b.boolean = v;
        return b;
    }
    static Bits of(REALstring v) {
        Bits b;
        b.string = v;
        return b;
    }
    static Bits of(REALobject v) {
        Bits b;
        b.object = v;
        return b;
    }
};

// Names of the language ignore case.
std::string folded(std::string_view name);
bool sameName(std::string_view a, std::string_view b);

} // namespace studio
