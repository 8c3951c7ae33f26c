// Variant: the properties that every value has when it is treated as a variant.
#include "table.h"

namespace studio {

namespace {

template <Kind kind>
Bits as(REALobject variant) {
    return unboxVariant(variant, simpleType(kind));
}

FrameworkClass variantClass() {
    FrameworkClass table;
    table.name = "Variant";
    table.dataSize = boxSize();
    table.destructor = releaseBox;
    table.properties = {
        property("Type", "Integer", variantType),
        property("Int32Value", "Integer", [](REALobject v) { return as<Kind::Int32>(v).i32; }),
        property("IntegerValue", "Integer", [](REALobject v) { return as<Kind::Int32>(v).i32; }),
        property("UInt32Value", "UInt32", [](REALobject v) { return as<Kind::UInt32>(v).u32; }),
        property("Int64Value", "Int64", [](REALobject v) { return as<Kind::Int64>(v).i64; }),
        property("LongValue", "Int64", [](REALobject v) { return as<Kind::Int64>(v).i64; }),
        property("SingleValue", "Single", [](REALobject v) { return as<Kind::Single>(v).f32; }),
        property("DoubleValue", "Double", [](REALobject v) { return as<Kind::Double>(v).f64; }),
        property("BooleanValue", "Boolean", [](REALobject v) { return as<Kind::Boolean>(v).boolean; }),
        property("ColorValue", "Color", [](REALobject v) { return as<Kind::Color>(v).u32; }),
        property("StringValue", "String", [](REALobject v) { return as<Kind::String>(v).string; }),
        property("DateValue", "Date",
                 [](REALobject v) { return unboxVariant(v, classes().named("Date")->type).object; }),
        property("ObjectValue", "Object",
                 [](REALobject v) { return unboxVariant(v, classes().root()->type).object; }),
        property("IsNull", "Boolean", [](REALobject v) { return v == nullptr; }),
        property("IsArray", "Boolean", [](REALobject v) { return isArray(v); }),
        property("IsNumeric", "Boolean",
                 [](REALobject v) {
                     std::int32_t code = variantType(v);
                     return code >= kREALVariantInt32 && code <= kREALVariantCurrency;
                 }),
    };
    return table;
}

const Registrar registrar([] { return FrameworkPart{{variantClass()}}; });

} // namespace

} // namespace studio
