#include "runtime/types.h"

#include "syntax/names.h"

#include <array>

namespace studio {

namespace {

const std::array<Type, 16> kSimpleTypes = {{
    {Kind::Void, "nothing"},
    {Kind::Nil, "Nil"},
    {Kind::Boolean, "Boolean"},
    {Kind::Int8, "Int8"},
    {Kind::UInt8, "UInt8"},
    {Kind::Int16, "Int16"},
    {Kind::UInt16, "UInt16"},
    {Kind::Int32, "Integer"},
    {Kind::UInt32, "UInt32"},
    {Kind::Int64, "Int64"},
    {Kind::UInt64, "UInt64"},
    {Kind::Single, "Single"},
    {Kind::Double, "Double"},
    {Kind::Color, "Color"},
    {Kind::String, "String"},
    {Kind::Variant, "Variant"},
}};

struct Alias {
    std::string_view name;
    Kind kind;
};
constexpr Alias kAliases[] = {
    {"Int32", Kind::Int32}, {"UInteger", Kind::UInt32}, {"Byte", Kind::UInt8}, {"Ptr", Kind::UInt32}};

} // namespace

const Type* simpleType(Kind kind) { return &kSimpleTypes[std::size_t(kind)]; }

const Type* simpleTypeNamed(std::string_view name) {
    for (std::size_t i = std::size_t(Kind::Boolean); i < kSimpleTypes.size(); ++i)
        if (sameName(kSimpleTypes[i].name, name)) return &kSimpleTypes[i];
    for (const Alias& alias : kAliases)
        if (sameName(alias.name, name)) return simpleType(alias.kind);
    return nullptr;
}

} // namespace studio
