// Variant: the properties that every value has when it is treated as a variant.
#include "table.h"

namespace studio {

namespace {

template <Kind kind>
Bits as(REALobject variant) {
    return unboxVariant(variant, simpleType(kind));
}

/// A value of any type. Its properties convert it; what cannot be converted raises TypeMismatchException.
///     Dim value As Variant = 12.5
FrameworkClass variantClass() {
    FrameworkClass table;
    table.name = "Variant";
    table.dataSize = boxSize();
    table.destructor = releaseBox;
    table.properties = {
        /// The code of the value's type, as VarType gives it.
        ///     Print Str(value.Type)
        property("Type", "Integer", variantType),
        /// The value as a whole number of 32 bits, cut off at the point.
        ///     Print Str(value.Int32Value)
        property("Int32Value", "Integer", [](REALobject v) { return as<Kind::Int32>(v).i32; }),
        /// The value as a whole number of 32 bits, cut off at the point.
        ///     Print Str(value.IntegerValue)
        property("IntegerValue", "Integer", [](REALobject v) { return as<Kind::Int32>(v).i32; }),
        /// The value as an unsigned number of 32 bits.
        ///     Print Str(value.UInt32Value)
        property("UInt32Value", "UInt32", [](REALobject v) { return as<Kind::UInt32>(v).u32; }),
        /// The value as a whole number of 64 bits, cut off at the point.
        ///     Print Str(value.Int64Value)
        property("Int64Value", "Int64", [](REALobject v) { return as<Kind::Int64>(v).i64; }),
        /// The value as a whole number of 64 bits, cut off at the point.
        ///     Print Str(value.LongValue)
        property("LongValue", "Int64", [](REALobject v) { return as<Kind::Int64>(v).i64; }),
        /// The value in single precision.
        ///     Print Str(value.SingleValue)
        property("SingleValue", "Single", [](REALobject v) { return as<Kind::Single>(v).f32; }),
        /// The value in double precision.
        ///     Print Str(value.DoubleValue)
        property("DoubleValue", "Double", [](REALobject v) { return as<Kind::Double>(v).f64; }),
        /// The value as True or False.
        ///     Dim yes As Variant = True
        ///     Print Str(yes.BooleanValue)
        property("BooleanValue", "Boolean", [](REALobject v) { return as<Kind::Boolean>(v).boolean; }),
        /// The value as a colour.
        ///     Dim red As Variant = &cFF0000
        ///     Print Str(red.ColorValue.Red)
        property("ColorValue", "Color", [](REALobject v) { return as<Kind::Color>(v).u32; }),
        /// The value as text.
        ///     Print value.StringValue
        property("StringValue", "String", [](REALobject v) { return as<Kind::String>(v).string; }),
        /// The value as a date.
        ///     Dim today As Variant = New Date
        ///     Print Str(today.DateValue.Year > 2000)
        property("DateValue", "Date",
                 [](REALobject v) { return unboxVariant(v, classes().named("Date")->type).object; }),
        /// The value as an object.
        ///     Dim today As Variant = New Date
        ///     Print Str(today.ObjectValue IsA Date)
        property("ObjectValue", "Object",
                 [](REALobject v) { return unboxVariant(v, classes().root()->type).object; }),
        /// Whether the value is Nil.
        ///     Print Str(value.IsNull)
        property("IsNull", "Boolean", [](REALobject v) { return v == nullptr; }),
        /// Whether the value is an array.
        ///     Print Str(value.IsArray)
        property("IsArray", "Boolean", [](REALobject v) { return isArray(v); }),
        /// Whether the value is a number; text is not, whatever it holds.
        ///     Print Str(value.IsNumeric)
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
