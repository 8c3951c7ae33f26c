// The declarations in a class table: turns text into types, signatures and constants.
#include "runtime/class_table.h"
#include "runtime/variants.h"
#include "syntax/ast.h"
#include "syntax/names.h"
#include "syntax/parser.h"

namespace studio {

const Type* ClassTable::typeNamed(const ast::TypeName& name) {
    const Type* type = simpleTypeNamed(name.name);
    if (!type) {
        auto other = aliases_.find(folded(name.name));
        type = other != aliases_.end() ? other->second : named(name.name)->type;
    }
    return name.rank ? arrayOf(type, name.rank) : type;
}

const Type* ClassTable::typeNamed(std::string_view text) { return typeNamed(parseTypeName(text)); }

Literal ClassTable::literal(const ast::Expr& e) {
    using ast::ExprKind;
    Literal result;
    switch (e.kind) {
    case ExprKind::Integer:
        if (e.number > INT32_MAX) {
            result.type = simpleType(Kind::Int64);
            result.bits = Bits::of(e.number);
        } else {
            result.type = simpleType(Kind::Int32);
            result.bits = Bits::of(std::int32_t(e.number));
        }
        return result;
    case ExprKind::Real:
        result.type = simpleType(Kind::Double);
        result.bits = Bits::of(e.real);
        return result;
    case ExprKind::String:
        result.type = simpleType(Kind::String);
        result.text = e.text;
        return result;
    case ExprKind::Color:
        result.type = simpleType(Kind::Color);
        result.bits = Bits::of(std::uint32_t(e.number));
        return result;
    case ExprKind::True:
    case ExprKind::False:
        result.type = simpleType(Kind::Boolean);
        result.bits = Bits::of(e.kind == ExprKind::True);
        return result;
    case ExprKind::Nil:
        result.type = simpleType(Kind::Nil);
        return result;
    case ExprKind::Unary:
        if (e.text == "-") {
            result = literal(*e.a);
            if (result.type->kind == Kind::Double)
                result.bits.f64 = -result.bits.f64;
            else if (result.type->kind == Kind::Int64)
                result.bits.i64 = -result.bits.i64;
            else if (result.type->kind == Kind::Int32)
                result.bits.i32 = -result.bits.i32;
            else
                break;
            return result;
        }
        break;
    default:
        break;
    }
    throw SourceError(e.position, "expected a literal value");
}

Signature ClassTable::resolve(const ast::Signature& parsed) {
    Signature result;
    result.name = parsed.name;
    if (parsed.result) result.result = typeNamed(*parsed.result);
    for (const ast::Parameter& p : parsed.parameters) {
        Parameter parameter;
        parameter.name = p.name;
        parameter.type = typeNamed(p.type);
        parameter.byRef = p.byRef;
        parameter.assigns = p.assigns;
        parameter.extends = p.extends;
        parameter.paramArray = p.paramArray;
        if (p.paramArray) parameter.type = arrayOf(parameter.type);
        if (p.defaultValue) {
            Literal value = literal(*p.defaultValue);
            if (conversionCost(value.type, parameter.type) < 0)
                throw SourceError(p.position,
                                  "the default of " + p.name + " is not of type " + parameter.type->name);
            parameter.defaultValue = value;
        } else if (p.optional) { // the type's own empty value
            parameter.defaultValue = Literal{parameter.type, Bits(), {}};
        }
        result.parameters.push_back(std::move(parameter));
    }
    return result;
}

Signature ClassTable::parse(std::string_view declaration) { return resolve(parseSignature(declaration)); }

Constant ClassTable::parseConstant(std::string_view declaration) {
    auto [name, value] = studio::parseConstant(declaration);
    return {std::string(declaration), name, literal(*value)};
}

} // namespace studio
