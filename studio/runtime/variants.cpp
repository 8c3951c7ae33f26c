#include "runtime/variants.h"

#include "runtime/arrays.h"
#include "runtime/calls.h"
#include "runtime/exceptions.h"
#include "runtime/objects.h"
#include "runtime/references.h"
#include "runtime/strings.h"
#include "runtime/text.h"

#include <cinttypes>
#include <cmath>
#include <cstdlib>

namespace studio {

namespace {

struct Box {
    REALobjectStruct object;
    const Type* type;
    Bits bits;
};

Class& variantClass() { return *classes().named("Variant"); }
bool isBox(REALobject object) { return object && &classOf(object) == &variantClass(); }
Box& boxOf(REALobject object) { return *reinterpret_cast<Box*>(object); }

std::int32_t typeCode(const Type* type) {
    switch (type->kind) {
    case Kind::Boolean:
        return kREALVariantBoolean;
    case Kind::Int8:
    case Kind::UInt8:
    case Kind::Int16:
    case Kind::UInt16:
    case Kind::Int32:
        return kREALVariantInt32;
    case Kind::UInt32: // held as Int64, which can express it
    case Kind::Int64:
    case Kind::UInt64:
        return kREALVariantInt64;
    case Kind::Single:
        return kREALVariantSingle;
    case Kind::Double:
        return kREALVariantDouble;
    case Kind::Color:
        return kREALVariantColor;
    case Kind::String:
        return kREALVariantString;
    case Kind::Object:
        return type->cls->variantType;
    case Kind::Variant:
        return kREALVariantObject;
    default:
        return kREALVariantNil;
    }
}

// A code implies the size of the elements, so arrays of integers of other sizes have a code that nobody
// mistakes for that of 32-bit or 64-bit integers.
std::int32_t elementCode(const Type* element) {
    constexpr std::int32_t kOtherInteger = 17;
    std::int32_t code = typeCode(element);
    int size = elementSize(element);
    if ((code == kREALVariantInt32 && size != 4) || (code == kREALVariantInt64 && size != 8))
        return kOtherInteger;
    return code;
}

double asDouble(const Type* type, Bits bits) {
    switch (type->kind) {
    case Kind::Int64:
        return double(bits.i64);
    case Kind::UInt64:
        return double(bits.u64);
    case Kind::UInt32:
    case Kind::Color:
        return bits.u32;
    case Kind::Single:
        return bits.f32;
    case Kind::Double:
        return bits.f64;
    case Kind::Boolean:
        return bits.boolean;
    default:
        return bits.i32;
    }
}

std::int64_t truncated(double value) {
    if (std::isnan(value)) return 0;
    if (value >= 9.2233720368547758e18) return INT64_MAX;
    if (value <= -9.2233720368547758e18) return INT64_MIN;
    return std::int64_t(value);
}

std::int64_t asInt64(const Type* type, Bits bits) {
    switch (type->kind) {
    case Kind::Int64:
    case Kind::UInt64:
        return bits.i64;
    case Kind::UInt32:
    case Kind::Color:
        return bits.u32;
    case Kind::Single:
        return truncated(bits.f32);
    case Kind::Double:
        return truncated(bits.f64);
    case Kind::Boolean:
        return bits.boolean;
    default:
        return bits.i32;
    }
}

Bits numberTo(const Type* to, const Type* from, Bits bits) {
    switch (to->kind) {
    case Kind::Boolean:
        return Bits::of(from->kind == Kind::Boolean ? bits.boolean : asDouble(from, bits) != 0);
    case Kind::Int8:
        return Bits::of(std::int32_t(std::int8_t(asInt64(from, bits))));
    case Kind::UInt8:
        return Bits::of(std::int32_t(std::uint8_t(asInt64(from, bits))));
    case Kind::Int16:
        return Bits::of(std::int32_t(std::int16_t(asInt64(from, bits))));
    case Kind::UInt16:
        return Bits::of(std::int32_t(std::uint16_t(asInt64(from, bits))));
    case Kind::Int32:
        return Bits::of(std::int32_t(asInt64(from, bits)));
    case Kind::UInt32:
    case Kind::Color:
        return Bits::of(std::uint32_t(asInt64(from, bits)));
    case Kind::Int64:
    case Kind::UInt64:
        return Bits::of(asInt64(from, bits));
    case Kind::Single:
        return Bits::of(float(asDouble(from, bits)));
    default:
        return Bits::of(asDouble(from, bits));
    }
}

[[noreturn]] void mismatch(const std::string& from, const Type* to) {
    raise("TypeMismatchException", "expected " + to->name + ", found " + from);
}

std::string describe(REALobject variant) {
    return isBox(variant) ? boxOf(variant).type->name : classNameOf(variant);
}

} // namespace

// ---- boxes -----------------------------------------------------------------------------------------------

REALobject boxVariant(const Type* type, Bits bits) {
    if (type->isObject()) return bits.object;
    if (type->kind == Kind::Nil || type->kind == Kind::Void) return nullptr;
    Class& cls = variantClass();
    REALobject object = heap().allocate(cls, sizeof(Box));
    Kind kind = type->kind == Kind::UInt32 ? Kind::Int64 : type->kind;
    boxOf(object).bits = kind == type->kind ? bits : numberTo(simpleType(kind), type, bits);
    boxOf(object).type = simpleType(kind);
    return object;
}

void releaseBox(REALobject variant) { release(boxOf(variant).type, boxOf(variant).bits); }
std::int32_t boxSize() { return sizeof(Box) - sizeof(REALobjectStruct); }

Bits unboxVariant(REALobject variant, const Type* to) {
    if (to->kind == Kind::Variant) return Bits::of(Heap::retain(variant));
    if (isBox(variant)) {
        const Box& box = boxOf(variant);
        if (box.type == to) return retain(to, box.bits);
        if (to->kind == Kind::String) return Bits::of(makeString(display(box.type, box.bits)));
        if (to->kind == Kind::Boolean && box.type->kind == Kind::String)
            return Bits::of(text::compare(toUtf8(box.bits.string), "true") == 0);
        if (box.type->kind == Kind::String && to->isNumber())
            return numberTo(to, simpleType(Kind::Double), Bits::of(parseNumber(toUtf8(box.bits.string))));
        if (to->kind <= Kind::Color) return numberTo(to, box.type, box.bits);
        mismatch(box.type->name, to);
    }
    if (!variant) return Bits(); // nil is every type's empty value
    switch (to->kind) {
    case Kind::Object:
        if (!isArray(variant) && classOf(variant).isA(to->cls)) return Bits::of(Heap::retain(variant));
        break;
    case Kind::Array:
        if (isArray(variant) && arrayOf(variant).rank == to->rank &&
            (arrayOf(variant).element == to->element ||
             (arrayOf(variant).element->kind == Kind::Variant && to->element->isObject())))
            return Bits::of(Heap::retain(variant));
        break;
    case Kind::String:
        for (const Class* c = &classOf(variant); c; c = c->superclass)
            if (c->toString) return Bits::of(c->toString(variant));
        break;
    default:
        break;
    }
    mismatch(describe(variant), to);
}

std::int32_t variantType(REALobject variant) {
    if (!variant) return kREALVariantNil;
    if (isBox(variant)) return typeCode(boxOf(variant).type);
    if (isArray(variant)) return kREALVariantArray + elementCode(arrayOf(variant).element);
    for (const Class* c = &classOf(variant); c; c = c->superclass)
        if (c->variantType != kREALVariantObject) return c->variantType;
    return kREALVariantObject;
}

bool variantsEqual(REALobject a, REALobject b) {
    if (a == b) return true;
    if (!isBox(a) || !isBox(b)) return false;
    const Box &x = boxOf(a), &y = boxOf(b);
    if (x.type->kind == Kind::String || y.type->kind == Kind::String) {
        if (x.type != y.type) return false;
        return text::compare(toUtf8(x.bits.string), toUtf8(y.bits.string)) == 0;
    }
    if (x.type->isInteger() && y.type->isInteger()) return asInt64(x.type, x.bits) == asInt64(y.type, y.bits);
    return asDouble(x.type, x.bits) == asDouble(y.type, y.bits);
}

// ---- conversions -----------------------------------------------------------------------------------------

namespace {

constexpr int kOperatorCost = 14;

bool isPlainNumber(const Type* from, const Type* to) { return from->isNumber() && to->isNumber(); }

// `Function Operator_Convert() As T` of the class of `from`.
const Method* converterTo(const Class* from, const Type* to) {
    const Method* found = nullptr;
    for (const Method* m : from->methodsNamed("Operator_Convert")) {
        if (!m->signature.parameters.empty() || !m->signature.result) continue;
        if (m->signature.result == to) return m;
        if (isPlainNumber(m->signature.result, to)) found = m;
    }
    return found;
}

// `Sub Operator_Convert(value As T)` of the class of `to`.
const Method* converterFrom(const Type* from, const Class* to) {
    const Method* found = nullptr;
    for (const Method* m : to->methodsNamed("Operator_Convert")) {
        if (m->signature.parameters.size() != 1 || m->signature.result) continue;
        const Type* type = m->signature.parameters[0].type;
        if (type == from) return m;
        if (isPlainNumber(from, type)) found = m;
    }
    return found;
}

bool sameDelegate(const Class* a, const Class* b) {
    if (!a->delegate || !b->delegate) return false;
    Signature x = *a->delegate, y = *b->delegate;
    x.name = y.name;
    return sameSignature(x, y);
}

} // namespace

int conversionCost(const Type* from, const Type* to) {
    if (from == to) return 0;
    if (to->kind == Kind::Variant) return from->kind == Kind::Void ? -1 : from->kind == Kind::Nil ? 2 : 12;
    if (from->kind == Kind::Variant) return to->kind == Kind::Void ? -1 : 10;
    if (from->kind == Kind::Nil) return to->isObject() ? 1 : -1;
    if (from->isEnumeration() || to->isEnumeration()) return -1;
    if (from->isNumber() && to->isNumber()) {
        bool fromReal = from->kind >= Kind::Single, toReal = to->kind >= Kind::Single;
        if (fromReal && toReal) return from->kind == Kind::Single ? 1 : 2;
        if (fromReal) return 7;
        if (toReal) return to->kind == Kind::Double ? 3 : 4;
        return elementSize(to) >= elementSize(from) ? 1 : 3;
    }
    if (from->kind == Kind::Object && to->kind == Kind::Object) {
        int distance = 0;
        for (const Class* c = from->cls; c; c = c->superclass, ++distance)
            if (c == to->cls) return distance;
        if (from->cls->isA(to->cls)) return distance;
        if (sameDelegate(from->cls, to->cls)) return 1;
    }
    if (from->kind == Kind::Object && converterTo(from->cls, to)) return kOperatorCost;
    if (to->kind == Kind::Object && converterFrom(from, to->cls)) return kOperatorCost;
    if (from->kind == Kind::Object && from->cls->toString && to->kind == Kind::String) return 11;
    if (from->kind == Kind::String && to->kind == Kind::Object && to->cls->fromString) return 11;
    return -1;
}

Bits convert(const Type* from, const Type* to, Bits bits) {
    if (from == to) return bits;
    if (to->kind == Kind::Variant) return Bits::of(boxVariant(from, bits));
    if (from->kind == Kind::Variant) {
        ObjectRef variant(bits.object);
        return unboxVariant(variant, to);
    }
    if (from->kind == Kind::Nil) return bits;
    bool objects = from->kind == Kind::Object && to->kind == Kind::Object;
    if (objects && (from->cls->isA(to->cls) || sameDelegate(from->cls, to->cls))) return bits;
    if (from->kind == Kind::Object && converterTo(from->cls, to)) {
        ObjectRef object(bits.object);
        if (!object) raise("NilObjectException", "this " + from->name + " is nil and has no " + to->name);
        const Method* m = converterTo(&classOf(object), to);
        return convert(m->signature.result, to, invoke(*m, object, nullptr));
    }
    if (to->kind == Kind::Object)
        if (const Method* m = converterFrom(from, to->cls)) {
            const Type* type = m->signature.parameters[0].type;
            Held value(type, convert(from, type, bits));
            ObjectRef object(newInstance(*to->cls));
            invoke(*m, object, &value.bits);
            return Bits::of(object.release());
        }
    if (objects) return bits;
    if (from->kind == Kind::String) {
        StringRef text(bits.string);
        return Bits::of(to->cls->fromString(text));
    }
    if (to->kind == Kind::String) {
        ObjectRef object(bits.object);
        return Bits::of(object ? from->cls->toString(object) : nullptr);
    }
    return numberTo(to, from, bits);
}

// ---- text ------------------------------------------------------------------------------------------------

namespace {

std::string trimmedExponent(std::string text) {
    // 1e+20, not 1e+020; and never "-0".
    return text == "-0" ? "0" : text;
}

std::string formatted(double value, int digits) {
    if (std::isnan(value)) return "NaN";
    if (std::isinf(value)) return value < 0 ? "-INF" : "INF";
    char text[64];
    if (value == std::floor(value) && std::fabs(value) < 1e15)
        std::snprintf(text, sizeof text, "%.0f", value);
    else
        std::snprintf(text, sizeof text, "%.*g", digits, value);
    return trimmedExponent(text);
}

} // namespace

std::string formatDouble(double value) { return formatted(value, 15); }
std::string formatSingle(float value) { return formatted(value, 7); }

double parseNumber(std::string_view text) {
    std::string copy;
    for (char c : text)
        if (c != ' ' && c != ',') copy += c;
    if (copy.size() > 2 && copy[0] == '&') {
        int base = std::tolower(copy[1]) == 'h' ? 16 : std::tolower(copy[1]) == 'o' ? 8 : 2;
        return double(std::strtoull(copy.c_str() + 2, nullptr, base));
    }
    // strtod would also accept hexadecimal numbers and "inf".
    std::size_t end = 0;
    while (end < copy.size() && std::string_view("+-.0123456789eE").find(copy[end]) != std::string_view::npos)
        ++end;
    return std::strtod(copy.substr(0, end).c_str(), nullptr);
}

std::string display(const Type* type, Bits bits) {
    char text[32];
    switch (type->kind) {
    case Kind::Nil:
        return "Nil";
    case Kind::Boolean:
        return bits.boolean ? "True" : "False";
    case Kind::UInt32:
        std::snprintf(text, sizeof text, "%u", bits.u32);
        return text;
    case Kind::Int64:
        std::snprintf(text, sizeof text, "%" PRId64, bits.i64);
        return text;
    case Kind::UInt64:
        std::snprintf(text, sizeof text, "%" PRIu64, bits.u64);
        return text;
    case Kind::Single:
        return formatSingle(bits.f32);
    case Kind::Double:
        return formatDouble(bits.f64);
    case Kind::Color:
        if (bits.u32 >> 24 == 255)
            std::snprintf(text, sizeof text, "&c%06X", bits.u32 & 0xFFFFFF);
        else
            std::snprintf(text, sizeof text, "&c%06X%02X", bits.u32 & 0xFFFFFF, 255 - (bits.u32 >> 24));
        return text;
    case Kind::String:
        return toUtf8(bits.string);
    case Kind::Variant:
    case Kind::Object:
    case Kind::Array:
        return display(bits.object);
    default:
        return std::to_string(bits.i32);
    }
}

std::string display(REALobject variant) {
    if (!variant) return "Nil";
    if (isBox(variant)) return display(boxOf(variant).type, boxOf(variant).bits);
    return classNameOf(variant);
}

} // namespace studio
