// The meaning of each operator for each pair of types.
#include "compiler.h"
#include "runtime/arrays.h"
#include "runtime/calls.h"
#include "runtime/exceptions.h"
#include "runtime/references.h"
#include "runtime/strings.h"
#include "runtime/variants.h"

#include <cmath>

namespace studio {

namespace {

template <class F>
Code combine(const Operand& a, const Operand& b, F f) {
    return [x = a.code, y = b.code, f](Frame& frame) {
        Bits left = x(frame);
        return f(left, y(frame));
    };
}

// For counted operands: both are held until there is a result.
template <class F>
Code combineCounted(const Operand& a, const Operand& b, F f) {
    return [x = a.code, y = b.code, t = a.type, u = b.type, f](Frame& frame) {
        Held left(t, x(frame)), right(u, y(frame));
        return f(left.bits, right.bits);
    };
}

[[noreturn]] void divisionByZero() { raise("UnsupportedOperationException", "division by zero"); }

template <class T, class F>
Code typed(const Operand& a, const Operand& b, F f) {
    return combine(a, b, [f](Bits x, Bits y) { return Bits::of(T(f(x.as<T>(), y.as<T>()))); });
}

// Integers wrap around. Signed overflow is undefined in C++, so the arithmetic is unsigned.
template <class T>
Code arithmeticCode(const std::string& op, const Operand& a, const Operand& b) {
    using U = std::conditional_t<std::is_same_v<T, std::int32_t>, std::uint32_t,
                                 std::conditional_t<std::is_same_v<T, std::int64_t>, std::uint64_t, T>>;
    if (op == "+") return typed<T>(a, b, [](T x, T y) { return T(U(x) + U(y)); });
    if (op == "-") return typed<T>(a, b, [](T x, T y) { return T(U(x) - U(y)); });
    if (op == "*") return typed<T>(a, b, [](T x, T y) { return T(U(x) * U(y)); });
    return nullptr;
}

template <class T>
Code divisionCode(const std::string& op, const Operand& a, const Operand& b) {
    using U = std::make_unsigned_t<T>;
    if (op == "\\")
        return typed<T>(a, b, [](T x, T y) {
            if (y == 0) divisionByZero();
            return y == -1 ? T(U(0) - U(x)) : T(x / y);
        });
    return typed<T>(a, b, [](T x, T y) {
        if (y == 0) divisionByZero();
        return y == -1 ? T(0) : T(x % y);
    });
}

template <class T>
Code bitwiseCode(const std::string& op, const Operand& a, const Operand& b) {
    if (op == "and") return typed<T>(a, b, [](T x, T y) { return T(x & y); });
    if (op == "or") return typed<T>(a, b, [](T x, T y) { return T(x | y); });
    return typed<T>(a, b, [](T x, T y) { return T(x ^ y); });
}

template <class Compare>
Code ordered(const std::string& op, const Operand& a, const Operand& b, bool counted, Compare compare) {
    auto make = [&](auto test) -> Code {
        auto body = [compare, test](Bits x, Bits y) { return Bits::of(test(compare(x, y))); };
        return counted ? combineCounted(a, b, body) : combine(a, b, body);
    };
    if (op == "=") return make([](int c) { return c == 0; });
    if (op == "<>") return make([](int c) { return c != 0; });
    if (op == "<") return make([](int c) { return c == -1; });
    if (op == "<=") return make([](int c) { return c == -1 || c == 0; });
    if (op == ">") return make([](int c) { return c == 1; });
    return make([](int c) { return c == 1 || c == 0; });
}

// 2 stands for "not comparable": a NaN is not even equal to itself.
template <class T>
int order(T x, T y) {
    return x < y ? -1 : x > y ? 1 : x == y ? 0 : 2;
}

bool isWide(const Type* t) {
    return t->kind == Kind::Int64 || t->kind == Kind::UInt64 || t->kind == Kind::UInt32;
}

// The type in which two numbers are combined.
const Type* common(const Type* a, const Type* b) {
    if (a->kind == Kind::Double || b->kind == Kind::Double) return simpleType(Kind::Double);
    if (a->kind == Kind::Single && b->kind == Kind::Single) return a;
    if (a->kind == Kind::Single || b->kind == Kind::Single) return simpleType(Kind::Double);
    if (a == b && a->kind == Kind::UInt32) return a;
    return simpleType(isWide(a) || isWide(b) ? Kind::Int64 : Kind::Int32);
}

[[noreturn]] void noOperator(const std::string& op, const Type* a, const Type* b, Position position) {
    throw SourceError(position, "'" + op + "' does not take " + a->name + " and " + b->name);
}

} // namespace

namespace {

struct OwnOperator {
    std::string_view symbol, method;
};
constexpr OwnOperator kBinary[] = {
    {"+", "Operator_Add"},    {"-", "Operator_Subtract"},       {"*", "Operator_Multiply"},
    {"/", "Operator_Divide"}, {"\\", "Operator_IntegerDivide"}, {"mod", "Operator_Modulo"},
    {"^", "Operator_Power"},  {"and", "Operator_And"},          {"or", "Operator_Or"},
    {"xor", "Operator_Xor"},
};

bool isObject(const Operand& operand) { return operand.type->kind == Kind::Object; }

} // namespace

// Nothing when the class has no such method for these arguments.
std::optional<Operand> Compiler::callOwn(std::string_view name, const Operand& self,
                                         std::vector<Operand> arguments, Position position) {
    std::vector<const Method*> candidates = self.type->cls->methodsNamed(name);
    if (candidates.empty()) return std::nullopt;
    std::vector<const Type*> types;
    for (const Operand& argument : arguments) types.push_back(argument.type);
    Choice choice = chooseOverload(candidates, types, name);
    if (!choice.method || !choice.method->signature.result) return std::nullopt;
    PreparedArguments prepared =
        prepare(*choice.method, choice.method->signature, std::move(arguments), {nullptr});
    return emitCall(*choice.method, self, std::move(prepared), position, true, false);
}

std::optional<Operand> Compiler::ownUnary(const std::string& op, Operand& a, Position position) {
    if (!isObject(a) || op == "+") return std::nullopt;
    return callOwn(op == "-" ? "Operator_Negate" : "Operator_Not", a, {}, position);
}

std::optional<Operand> Compiler::ownBinary(const std::string& op, Operand& a, Operand& b, Position position) {
    for (const OwnOperator& own : kBinary) {
        if (own.symbol != op) continue;
        if (isObject(a))
            if (auto result = callOwn(own.method, a, {b}, position)) return result;
        if (isObject(b))
            if (auto result = callOwn(std::string(own.method) + "Right", b, {a}, position)) return result;
    }
    // Operator_Convert makes the one what the other is.
    if (isObject(a) && !b.type->isObject() && conversionCost(a.type, b.type) >= 0)
        a = coerce(std::move(a), b.type, "");
    else if (isObject(b) && !a.type->isObject() && conversionCost(b.type, a.type) >= 0)
        b = coerce(std::move(b), a.type, "");
    return std::nullopt;
}

// Operator_Compare tells which is greater. Nil is less than any object, without a call.
std::optional<Operand> Compiler::ownComparison(const std::string& op, Operand& a, Operand& b,
                                               Position position) {
    if (!(isObject(a) || isObject(b)) || a.type->kind == Kind::Nil || b.type->kind == Kind::Nil)
        return std::nullopt;
    bool swapped = !isObject(a) || a.type->cls->methodsNamed("Operator_Compare").empty();
    Operand &self = swapped ? b : a, &other = swapped ? a : b;
    if (!isObject(self)) return std::nullopt;
    int selfSlot = newSlot(), otherSlot = newSlot();
    auto waiting = [](const Operand& of, int slot) {
        return Operand{of.type, [slot, type = of.type](Frame& f) { return retain(type, f.slots[slot]); },
                       of.position};
    };
    std::optional<Operand> called =
        callOwn("Operator_Compare", waiting(self, selfSlot), {waiting(other, otherSlot)}, position);
    if (!called) return std::nullopt;
    Operand order = coerce(std::move(*called), simpleType(Kind::Double), "the order");
    order.code = [first = a.code, second = b.code, selfType = self.type, otherType = other.type, selfSlot,
                  otherSlot, swapped, order = std::move(order.code)](Frame& f) {
        Held x(swapped ? otherType : selfType, first(f));
        Held y(swapped ? selfType : otherType, second(f));
        Bits self = swapped ? y.bits : x.bits, other = swapped ? x.bits : y.bits;
        bool otherIsNil = otherType->isObject() && !other.object;
        if (!self.object || otherIsNil) {
            double difference = double(self.object != nullptr) - double(!otherIsNil);
            return Bits::of(swapped ? -difference : difference);
        }
        Bits outerSelf = std::exchange(f.slots[selfSlot], self),
             outerOther = std::exchange(f.slots[otherSlot], other);
        struct Restore {
            Bits &self, &other, outerSelf, outerOther;
            ~Restore() {
                self = outerSelf;
                other = outerOther;
            }
        } restore{f.slots[selfSlot], f.slots[otherSlot], outerSelf, outerOther};
        double result = order(f).f64;
        return Bits::of(swapped ? -result : result);
    };
    Operand zero = literal({simpleType(Kind::Double), Bits::of(0.0), {}}, position);
    return comparison(op, std::move(order), std::move(zero), position);
}

Operand Compiler::unary(const std::string& op, Operand a, Position position) {
    if (auto own = ownUnary(op, a, position)) return std::move(*own);
    if (a.type->kind == Kind::Variant && op != "not") a = coerce(std::move(a), simpleType(Kind::Double), "");
    if (op == "not") {
        if (a.type->kind == Kind::Variant) a = coerce(std::move(a), simpleType(Kind::Boolean), "");
        if (a.type->kind == Kind::Boolean)
            return {a.type, [code = a.code](Frame& f) { return Bits::of(!code(f).boolean); }, position};
        if (!a.type->isInteger())
            throw SourceError(position, "expected a Boolean after 'Not', found " + a.type->name);
        const Type* type = isWide(a.type) ? simpleType(Kind::Int64) : simpleType(Kind::Int32);
        a = coerce(std::move(a), type, "");
        if (type->kind == Kind::Int64)
            return {type, [code = a.code](Frame& f) { return Bits::of(~code(f).i64); }, position};
        return {type, [code = a.code](Frame& f) { return Bits::of(~code(f).i32); }, position};
    }
    if (!a.type->isNumber())
        throw SourceError(position, "expected a number after '" + op + "', found " + a.type->name);
    if (op == "+") return a;
    if (a.constant) {
        Literal negative = *a.constant;
        if (negative.type->kind == Kind::Int32) negative.bits.i32 = std::int32_t(0u - negative.bits.u32);
        if (negative.type->kind == Kind::Int64) negative.bits.i64 = std::int64_t(0u - negative.bits.u64);
        if (negative.type->kind == Kind::Double) negative.bits.f64 = -negative.bits.f64;
        return literal(negative, position);
    }
    Literal zero;
    zero.type = simpleType(Kind::Int32);
    return arithmetic("-", literal(zero, position), std::move(a), position);
}

Operand Compiler::binary(const std::string& op, Operand a, Operand b, Position position) {
    if (isObject(a) || isObject(b))
        if (auto own = ownBinary(op, a, b, position)) return std::move(*own);
    if (op == "and" || op == "or" || op == "xor") return logical(op, std::move(a), std::move(b), position);
    if (op == "=" || op == "<>" || op == "<" || op == "<=" || op == ">" || op == ">=" || op == "is")
        return comparison(op, std::move(a), std::move(b), position);
    return arithmetic(op, std::move(a), std::move(b), position);
}

Operand Compiler::arithmetic(const std::string& op, Operand a, Operand b, Position position) {
    const Type* string = simpleType(Kind::String);
    if (op == "+" && (a.type == string || b.type == string)) {
        if (a.type != string && a.type->kind != Kind::Variant) noOperator(op, a.type, b.type, position);
        if (b.type != string && b.type->kind != Kind::Variant) noOperator(op, a.type, b.type, position);
        a = coerce(std::move(a), string, "");
        b = coerce(std::move(b), string, "");
        return {string,
                combineCounted(a, b,
                               [](Bits x, Bits y) {
                                   std::string_view left = bytesOf(x.string), right = bytesOf(y.string);
                                   if (left.empty()) return Bits::of(Heap::retain(y.string));
                                   if (right.empty()) return Bits::of(Heap::retain(x.string));
                                   if (encodingOf(x.string) != encodingOf(y.string))
                                       return Bits::of(makeString(toUtf8(x.string) + toUtf8(y.string)));
                                   std::string joined;
                                   joined.reserve(left.size() + right.size());
                                   joined.append(left).append(right);
                                   return Bits::of(heap().newString(joined, encodingOf(x.string)));
                               }),
                position};
    }
    for (Operand* operand : {&a, &b})
        if (operand->type->kind == Kind::Variant)
            *operand = coerce(std::move(*operand), simpleType(Kind::Double), "");
    if (!a.type->isNumber() || !b.type->isNumber()) noOperator(op, a.type, b.type, position);
    const Type* real = simpleType(Kind::Double);
    if (op == "/" || op == "^") {
        const Type* type =
            op == "/" && a.type->kind == Kind::Single && b.type->kind == Kind::Single ? a.type : real;
        a = coerce(std::move(a), type, "");
        b = coerce(std::move(b), type, "");
        if (op == "^")
            return {real, typed<double>(a, b, [](double x, double y) { return std::pow(x, y); }), position};
        if (type == real)
            return {real, typed<double>(a, b, [](double x, double y) { return x / y; }), position};
        return {type, typed<float>(a, b, [](float x, float y) { return x / y; }), position};
    }
    const Type* type = common(a.type, b.type);
    if ((op == "\\" || op == "mod") && !type->isInteger()) type = simpleType(Kind::Int64);
    const Type* unsignedType = type->kind == Kind::UInt32 ? type : nullptr;
    if (unsignedType) type = simpleType(Kind::Int64); // and back below
    a = coerce(std::move(a), type, "");
    b = coerce(std::move(b), type, "");
    Code code;
    if (op == "\\" || op == "mod")
        code = type->kind == Kind::Int64 ? divisionCode<std::int64_t>(op, a, b)
                                         : divisionCode<std::int32_t>(op, a, b);
    else if (type->kind == Kind::Int64)
        code = arithmeticCode<std::int64_t>(op, a, b);
    else if (type->kind == Kind::Int32)
        code = arithmeticCode<std::int32_t>(op, a, b);
    else if (type->kind == Kind::Single)
        code = arithmeticCode<float>(op, a, b);
    else
        code = arithmeticCode<double>(op, a, b);
    Operand result{type, std::move(code), position};
    return unsignedType ? coerce(std::move(result), unsignedType, "") : result;
}

Operand Compiler::comparison(const std::string& given, Operand a, Operand b, Position position) {
    const Type* boolean = simpleType(Kind::Boolean);
    std::string op = given == "is" ? "=" : given;
    bool equality = op == "=" || op == "<>";
    const Type *s = a.type, *t = b.type;
    auto isObject = [](const Type* type) { return type->isObject() || type->kind == Kind::Nil; };
    bool variant = s->kind == Kind::Variant || t->kind == Kind::Variant;
    if (given == "is" && (!isObject(s) || !isObject(t))) noOperator("Is", s, t, position);
    if (given != "is")
        if (auto own = ownComparison(op, a, b, position)) return std::move(*own);

    if (isObject(s) && isObject(t) &&
        (!variant || given == "is" || s->kind == Kind::Nil || t->kind == Kind::Nil)) {
        if (!equality) noOperator(op, s, t, position);
        bool related = conversionCost(s, t) >= 0 || conversionCost(t, s) >= 0 || s->kind == t->kind;
        if (!related) noOperator(op, s, t, position);
        auto identity = [](Bits x, Bits y) { return x.object == y.object ? 0 : 2; };
        return {boolean, ordered(op, a, b, true, identity), position};
    }
    if (variant && equality) {
        const Type* type = simpleType(Kind::Variant);
        a = coerce(std::move(a), type, "");
        b = coerce(std::move(b), type, "");
        auto equal = [](Bits x, Bits y) { return variantsEqual(x.object, y.object) ? 0 : 2; };
        return {boolean, ordered(op, a, b, true, equal), position};
    }
    if (variant) { // ordered as the other operand, or as numbers
        const Type* type = s->kind == Kind::String || t->kind == Kind::String ? simpleType(Kind::String)
                                                                              : simpleType(Kind::Double);
        a = coerce(std::move(a), type, "");
        b = coerce(std::move(b), type, "");
        s = t = type;
    }
    if (s->kind == Kind::String && t->kind == Kind::String) {
        auto compare = [s](Bits x, Bits y) { return compareValues(s, x, y); };
        return {boolean, ordered(op, a, b, true, compare), position};
    }
    if (s->isNumber() && t->isNumber()) {
        const Type* type = common(s, t);
        if (type->kind == Kind::UInt32) type = simpleType(Kind::Int64);
        a = coerce(std::move(a), type, "");
        b = coerce(std::move(b), type, "");
        Code code;
        if (type->kind == Kind::Int32)
            code = ordered(op, a, b, false, [](Bits x, Bits y) { return order(x.i32, y.i32); });
        else if (type->kind == Kind::Int64)
            code = ordered(op, a, b, false, [](Bits x, Bits y) { return order(x.i64, y.i64); });
        else if (type->kind == Kind::Single)
            code = ordered(op, a, b, false, [](Bits x, Bits y) { return order(x.f32, y.f32); });
        else
            code = ordered(op, a, b, false, [](Bits x, Bits y) { return order(x.f64, y.f64); });
        return {boolean, std::move(code), position};
    }
    bool ordinal = s->kind == Kind::Boolean || s->kind == Kind::Color;
    if (s == t && (s->isEnumeration() || (equality && ordinal))) {
        auto compare = [s](Bits x, Bits y) { return compareValues(s, x, y); };
        return {boolean, ordered(op, a, b, false, compare), position};
    }
    noOperator(op, s, t, position);
}

Operand Compiler::logical(const std::string& op, Operand a, Operand b, Position position) {
    for (Operand* operand : {&a, &b})
        if (operand->type->kind == Kind::Variant)
            *operand = coerce(std::move(*operand), simpleType(Kind::Boolean), "");
    if (a.type->kind == Kind::Boolean && b.type->kind == Kind::Boolean) {
        Code code;
        if (op == "and")
            code = [x = a.code, y = b.code](Frame& f) { return Bits::of(x(f).boolean && y(f).boolean); };
        else if (op == "or")
            code = [x = a.code, y = b.code](Frame& f) { return Bits::of(x(f).boolean || y(f).boolean); };
        else
            code = [x = a.code, y = b.code](Frame& f) { return Bits::of(x(f).boolean != y(f).boolean); };
        return {a.type, std::move(code), position};
    }
    if (!a.type->isInteger() || !b.type->isInteger()) noOperator(op, a.type, b.type, position);
    const Type* type = common(a.type, b.type);
    if (type->kind == Kind::UInt32) type = simpleType(Kind::Int64);
    a = coerce(std::move(a), type, "");
    b = coerce(std::move(b), type, "");
    return {type,
            type->kind == Kind::Int64 ? bitwiseCode<std::int64_t>(op, a, b)
                                      : bitwiseCode<std::int32_t>(op, a, b),
            position};
}

} // namespace studio
