#include "runtime/value.h"

#include "runtime/arrays.h"
#include "runtime/objects.h"
#include "runtime/references.h"
#include "runtime/strings.h"
#include "runtime/variants.h"
#include "syntax/names.h"

namespace studio {

Value::Value(std::string_view utf8) : type_(simpleType(Kind::String)), bits_(Bits::of(makeString(utf8))) {}

Value Value::adopt(REALobject object) {
    if (!object) return {};
    const Class& cls = classOf(object);
    if (cls.arrayElement) return Value(classes().arrayOf(cls.arrayElement, cls.arrayRank), Bits::of(object));
    if (sameName(cls.name, "Variant")) return Value(simpleType(Kind::Variant), Bits::of(object));
    return Value(cls.type, Bits::of(object));
}

Value Value::received(REALobject object) { return adopt(heap().takeOver(object)); }
Value Value::share(const Type* type, Bits bits) { return Value(type, retain(type, bits)); }
Value Value::share(REALobject object) { return adopt(Heap::retain(object)); }
Value Value::color(std::uint32_t argb) { return Value(simpleType(Kind::Color), Bits::of(argb)); }
Value Value::string(std::string_view bytes, std::uint32_t encoding) {
    return Value(simpleType(Kind::String), Bits::of(heap().newString(bytes, encoding)));
}

Value::Value(const Value& other) : type_(other.type_), bits_(retain(other.type_, other.bits_)) {}
Value::~Value() { studio::release(type_, bits_); }

bool Value::isNil() const { return type_->kind == Kind::Nil || (type_->isObject() && !bits_.object); }

namespace {
// Converts a reference of its own, so the value keeps the one it has.
Bits converted(const Type* from, Bits bits, Kind to) {
    if (from->kind == Kind::Nil) return {};
    ObjectRef variant(boxVariant(from, retain(from, bits)));
    return unboxVariant(variant, simpleType(to));
}
} // namespace

bool Value::boolean() const { return converted(type_, bits_, Kind::Boolean).boolean; }
std::int32_t Value::integer() const { return converted(type_, bits_, Kind::Int32).i32; }
std::int64_t Value::int64() const { return converted(type_, bits_, Kind::Int64).i64; }
double Value::number() const { return converted(type_, bits_, Kind::Double).f64; }
std::string Value::text() const {
    if (type_->kind == Kind::String) return toUtf8(bits_.string);
    return display(type_, bits_);
}

std::string Value::className() const {
    REALobject handle = object();
    return handle ? classNameOf(handle) : std::string();
}

int Value::count() const { return isArray(object()) ? arrayOf(object()).count : 0; }

Value Value::at(int index) const {
    if (!isArray(object())) throw UsageError("a " + type_->name + " has no elements");
    ArrayObject& array = arrayOf(object());
    if (index < 0 || index >= array.count) throw UsageError("there is no element " + std::to_string(index));
    Bits bits = arrayGet(array, index);
    return array.element->isObject() ? adopt(bits.object) : Value(array.element, bits);
}

void* Value::data(int offset) const {
    if (!object()) throw UsageError("nil has no instance data");
    return instanceData(object()) + offset;
}

} // namespace studio
