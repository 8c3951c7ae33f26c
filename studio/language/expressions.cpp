// Expressions: names, members, calls, casts.
#include "compiler.h"
#include "runtime/arrays.h"
#include "runtime/calls.h"
#include "runtime/exceptions.h"
#include "runtime/objects.h"
#include "runtime/references.h"
#include "runtime/strings.h"
#include "runtime/variants.h"
#include "syntax/ast.h"
#include "syntax/names.h"

#include <algorithm>
#include <cstring>

namespace studio {

namespace {

constexpr std::size_t kMostArguments = 32;

const Type* integer() { return simpleType(Kind::Int32); }
const Type* nothing() { return simpleType(Kind::Void); }

std::vector<const ast::Expr*> pointers(const std::vector<ast::ExprPtr>& list) {
    std::vector<const ast::Expr*> result;
    for (const ast::ExprPtr& e : list) result.push_back(e.get());
    return result;
}

[[noreturn]] void nilHas(const Type* type, const std::string& member) {
    const auto& note = runtime().foundNothing;
    raise("NilObjectException", "this " + type->name + " is nil and has no " + member +
                                    (note.type == type ? "; " + note.call + " returned nil" : ""));
}

ArrayObject& arrayIn(const ObjectRef& object) {
    if (!object) raise("NilObjectException", "this array is nil");
    return arrayOf(object.handle);
}

} // namespace

Operand Compiler::value(const ast::Expr& e) {
    Operand result = expression(e);
    if (result.type->kind == Kind::Void)
        throw SourceError(e.position, "expected a value, but this call has no result");
    return result;
}

Operand Compiler::valueAs(const ast::Expr& e, const Type* type, const std::string& what) {
    if (e.kind == ast::ExprKind::AddressOf && type->kind == Kind::Object && type->cls->delegate)
        return addressOf(e, type->cls);
    bool literalArray = e.kind == ast::ExprKind::Call && e.a->kind == ast::ExprKind::Name &&
                        sameName(e.a->text, "Array") && !findVariable("Array");
    if (literalArray && type->kind == Kind::Array) return coerce(arrayLiteral(e, type->element), type, what);
    Operand result = value(e);
    return coerce(std::move(result), type, what);
}

Operand Compiler::condition(const ast::Expr& e) {
    keepsReceivers_ = false;
    Operand result = value(e);
    if (result.type->kind != Kind::Boolean && result.type->kind != Kind::Variant)
        throw SourceError(e.position, "expected a Boolean, found " + result.type->name);
    result = coerce(std::move(result), simpleType(Kind::Boolean), "");
    // A loop asks again and again within one statement.
    if (keepsReceivers_)
        result.code = [code = std::move(result.code), program = &program_](Frame& f) {
            Program::Statement asked(*program);
            return code(f);
        };
    return result;
}

Operand Compiler::expression(const ast::Expr& e) {
    using ast::ExprKind;
    switch (e.kind) {
    case ExprKind::Integer:
    case ExprKind::Real:
    case ExprKind::String:
    case ExprKind::Color:
    case ExprKind::True:
    case ExprKind::False:
        return literal(classes().literal(e), e.position);
    case ExprKind::Nil:
        return {simpleType(Kind::Nil), [](Frame&) { return Bits(); }, e.position};
    case ExprKind::Self:
        return selfOperand(e.position);
    case ExprKind::Super:
        throw SourceError(e.position, "expected '.' and a method after 'Super'");
    case ExprKind::Name:
        return name(e);
    case ExprKind::Member:
        return member(e, {}, false);
    case ExprKind::Call:
        return call(e);
    case ExprKind::Unary: {
        Operand a = value(*e.a);
        bool constant = a.constant.has_value();
        Operand result = unary(e.text, std::move(a), e.position);
        return constant ? computed(std::move(result)) : result;
    }
    case ExprKind::Binary: {
        Operand a = value(*e.a);
        Operand b = value(*e.b);
        bool constant = a.constant && b.constant;
        Operand result = binary(e.text, std::move(a), std::move(b), e.position);
        return constant ? computed(std::move(result)) : result;
    }
    case ExprKind::IsA:
        return isA(e);
    case ExprKind::New:
        return create(e);
    case ExprKind::AddressOf:
        return addressOf(e, nullptr);
    case ExprKind::RaiseEvent:
        return raiseEvent(e, {});
    case ExprKind::Conditional:
        return conditional(e);
    case ExprKind::Pair:
        return pair(e);
    }
    throw SourceError(e.position, "expected an expression");
}

// The operands are constants, so the code needs no frame. What it raises, it raises when the program runs.
Operand Compiler::computed(Operand operand) {
    if (operand.constant || !operand.code) return operand;
    const Type* type = operand.type;
    if (type->isObject() || type->kind < Kind::Boolean) return operand;
    try {
        Frame frame{nullptr, nullptr, {}, 0};
        Held result(type, operand.code(frame));
        Literal constant{type, Bits(), {}};
        if (type->kind == Kind::String)
            constant.text = toUtf8(result.bits.string);
        else
            constant.bits = result.bits;
        return literal(constant, operand.position);
    } catch (const Raised&) {
        return operand;
    }
}

Operand Compiler::conditional(const ast::Expr& e) {
    Operand test = condition(*e.arguments[0]);
    Operand yes = value(*e.arguments[1]), no = value(*e.arguments[2]);
    const Type* type = yes.type;
    if (yes.type != no.type) {
        int widened = conversionCost(yes.type, no.type), narrowed = conversionCost(no.type, yes.type);
        if (widened >= 0 && (narrowed < 0 || widened <= narrowed)) type = no.type;
        yes = coerce(std::move(yes), type, "");
        no = coerce(std::move(no), type, "");
    }
    return {type,
            [test = test.code, yes = yes.code, no = no.code](Frame& f) {
                return test(f).boolean ? yes(f) : no(f);
            },
            e.position};
}

Operand Compiler::pair(const ast::Expr& e) {
    const Type* variant = simpleType(Kind::Variant);
    Class* cls = classes().named("Pair");
    Operand left = valueAs(*e.a, variant, ""), right = valueAs(*e.b, variant, "");
    const Method* constructor = nullptr;
    for (const Method* m : cls->constructors())
        if (m->signature.parameters.size() == 2) constructor = m;
    return {cls->type,
            [cls, constructor, variant, left = left.code, right = right.code](Frame& f) {
                Held a(variant, left(f)), b(variant, right(f));
                ObjectRef made(newInstance(*cls));
                Bits arguments[2] = {a.bits, b.bits};
                invoke(*constructor, made, arguments);
                return Bits::of(made.release());
            },
            e.position};
}

// ---- literals and conversions ----------------------------------------------------------------------------

Operand Compiler::literal(const Literal& value, Position position) {
    if (value.type->kind == Kind::String) {
        REALstring text = heap().newPermanentString(value.text);
        if (text) program_.literals.push_back(text);
        return {value.type, [text](Frame&) { return Bits::of(Heap::retain(text)); }, position, value};
    }
    return {value.type, [bits = value.bits](Frame&) { return bits; }, position, value};
}

Operand Compiler::coerce(Operand operand, const Type* type, const std::string& what) {
    const Type* from = operand.type;
    if (from == type)
        return type->kind == Kind::Object && type->cls->copy ? copied(std::move(operand)) : operand;
    if (conversionCost(from, type) < 0) {
        std::string hint;
        if (from->kind == Kind::Object && type->kind == Kind::Object && type->cls->isA(from->cls))
            hint = "; write " + type->name + "(...) to convert it";
        if (from->isEnumeration() || type->isEnumeration())
            hint = "; write " + type->name + "(...) to convert it";
        if (type->kind == Kind::String && from->isNumber()) hint = "; write Str(...) to convert it";
        if (type->isNumber() && from->kind == Kind::String) hint = "; write Val(...) to convert it";
        throw SourceError(operand.position, "expected " + type->name + (what.empty() ? "" : " for " + what) +
                                                ", found " + from->name + hint);
    }
    if (operand.constant && from->isNumber() && type->isNumber()) {
        Literal converted{type, convert(from, type, operand.constant->bits), {}};
        return literal(converted, operand.position);
    }
    Operand result{type, nullptr, operand.position};
    Code code = std::move(operand.code);
    bool related = from->kind == Kind::Object && type->kind == Kind::Object && from->cls->isA(type->cls);
    if (from->kind == Kind::Nil || related || (from->isObject() && type->kind == Kind::Variant))
        result.code = std::move(code);
    else if (from->kind == Kind::Int32 && type->kind == Kind::Double)
        result.code = [code](Frame& f) { return Bits::of(double(code(f).i32)); };
    else if (from->kind == Kind::Int32 && type->kind == Kind::Int64)
        result.code = [code](Frame& f) { return Bits::of(std::int64_t(code(f).i32)); };
    else if (from->kind == Kind::Single && type->kind == Kind::Double)
        result.code = [code](Frame& f) { return Bits::of(double(code(f).f32)); };
    else
        result.code = [code, from, type](Frame& f) { return convert(from, type, code(f)); };
    return result;
}

// A structure is a value: whoever keeps it has one of its own.
Operand Compiler::copied(Operand structure) {
    structure.code = [code = std::move(structure.code), cls = structure.type->cls](Frame& f) {
        ObjectRef original(code(f).object);
        ObjectRef copy(newInstance(*cls));
        if (original) cls->copy(copy, original);
        return Bits::of(copy.release());
    };
    return structure;
}

const Type* Compiler::typeFrom(const ast::Expr& e) {
    if (e.kind == ast::ExprKind::Name)
        if (const Type* type = simpleTypeNamed(e.text)) return type;
    Class* cls = findClass(e);
    return cls ? cls->type : nullptr;
}

Operand Compiler::cast(const Type* type, const ast::Expr& e) {
    if (e.kind == ast::ExprKind::AddressOf) return valueAs(e, type, "");
    Operand operand = value(e);
    // Between an enumeration and numbers, explicitly.
    if (operand.type->isEnumeration() && type->isNumber()) {
        operand.type = simpleType(operand.type->kind);
        if (operand.constant) operand.constant->type = operand.type;
    }
    if (type->isEnumeration() && operand.type->isNumber()) {
        operand = coerce(std::move(operand), simpleType(type->kind), "");
        operand.type = type;
        if (operand.constant) operand.constant->type = type;
        return operand;
    }
    const Type* from = operand.type;
    if (type->kind != Kind::Object || from->kind == Kind::Nil) return coerce(std::move(operand), type, "");
    if (!from->isObject()) throw SourceError(e.position, "a " + from->name + " cannot be a " + type->name);
    bool related = from->kind != Kind::Object || type->cls->isA(from->cls) || from->cls->isA(type->cls);
    if (!related && conversionCost(from, type) >= 0) return coerce(std::move(operand), type, "");
    if (!related && !type->cls->isInterface && !from->cls->isInterface)
        throw SourceError(e.position, "a " + from->name + " is never a " + type->name);
    return {type,
            [code = operand.code, cls = type->cls](Frame& f) {
                ObjectRef object(code(f).object);
                if (object && (isArray(object) || !classOf(object).isA(cls)))
                    raise("IllegalCastException", "a " + classNameOf(object) + " is not a " + cls->name);
                return Bits::of(object.release());
            },
            e.position};
}

Operand Compiler::isA(const ast::Expr& e) {
    Operand operand = value(*e.a);
    const Type* type = resolveType(e.type);
    if (!operand.type->isObject() || type->kind != Kind::Object)
        throw SourceError(e.position, "expected an object and a class around 'IsA'");
    return {simpleType(Kind::Boolean),
            [code = operand.code, cls = type->cls](Frame& f) {
                ObjectRef object(code(f).object);
                return Bits::of(object && !isArray(object) && classOf(object).isA(cls));
            },
            e.position};
}

// ---- names -----------------------------------------------------------------------------------------------

Operand Compiler::variable(const Local& local, Position position) {
    if (local.constant) return literal(*local.constant, position);
    const Type* type = local.type;
    if (Bits* address = local.address) {
        if (!type->isCounted()) return {type, [address](Frame&) { return *address; }, position};
        return {type, [address, type](Frame&) { return retain(type, *address); }, position};
    }
    int slot = local.slot;
    if (!type->isCounted()) return {type, [slot](Frame& f) { return f.slots[slot]; }, position};
    if (type->kind == Kind::String)
        return {type, [slot](Frame& f) { return Bits::of(Heap::retain(f.slots[slot].string)); }, position};
    return {type, [slot](Frame& f) { return Bits::of(Heap::retain(f.slots[slot].object)); }, position};
}

Operand Compiler::selfOperand(Position position) {
    if (!hasSelf_) throw SourceError(position, "there is no object here for 'Self'");
    return {owner_->type, [](Frame& f) { return Bits::of(Heap::retain(f.self)); }, position};
}

Operand Compiler::field(Operand object, const Field& field) {
    return {field.type,
            [code = object.code, field, type = object.type](Frame& f) {
                ObjectRef held(code(f).object);
                if (!held) nilHas(type, field.name);
                return retain(field.type, dataAt<Bits>(held, field.offset));
            },
            object.position};
}

Operand Compiler::name(const ast::Expr& e) {
    if (Local* local = findVariable(e.text)) return variable(*local, e.position);
    if (owner_) {
        if (const Constant* constant = owner_->constant(e.text)) return literal(constant->value, e.position);
        if (hasSelf_ &&
            (findField(owner_, e.text) || owner_->property(e.text) || !owner_->methodsNamed(e.text).empty()))
            return memberOf(selfOperand(e.position), e, {}, false);
        if (auto shared = owner_->sharedMethodsNamed(e.text); !shared.empty())
            return invokeMethod(shared, {}, {}, e.text, e.position);
    }
    if (const Constant* constant = moduleConstant(e.text)) return literal(constant->value, e.position);
    if (auto functions = functionsNamed(e.text); !functions.empty())
        return invokeMethod(functions, {}, {}, e.text, e.position);
    if (classes().find(e.text)) throw SourceError(e.position, "'" + e.text + "' is a type; expected a value");
    unknown(e.position, "there is no", e.text, namesInScope());
}

// ---- members ---------------------------------------------------------------------------------------------

Operand Compiler::member(const ast::Expr& e, const std::vector<const ast::Expr*>& arguments, bool called) {
    if (Class* cls = findClass(*e.a)) return sharedMember(*cls, e, arguments, called);
    if (e.a->kind == ast::ExprKind::Super) {
        if (!hasSelf_ || !owner_->superclass) throw SourceError(e.position, "there is no 'Super' here");
        Operand self = selfOperand(e.position);
        std::vector<const Method*> candidates = owner_->superclass->methodsNamed(e.text);
        if (candidates.empty()) unknown(e.position, owner_->superclass->name + " has no", e.text, {});
        return invokeMethod(candidates, std::move(self), arguments, e.text, e.position, false);
    }
    return memberOf(receiver(*e.a), e, arguments, called);
}

Operand Compiler::receiver(const ast::Expr& e) {
    Operand result = value(e);
    return result.type->isObject() ? kept(e, std::move(result)) : result;
}

Operand Compiler::kept(const ast::Expr& e, Operand result) {
    bool lives = e.kind == ast::ExprKind::Self || (e.kind == ast::ExprKind::Name && findVariable(e.text));
    if (lives) return result;
    keepsReceivers_ = true;
    result.code = [code = std::move(result.code), program = &program_](Frame& f) {
        Bits object = code(f);
        if (object.object) program->keep(object.object);
        return object;
    };
    return result;
}

Operand Compiler::sharedMember(Class& cls, const ast::Expr& e, const std::vector<const ast::Expr*>& arguments,
                               bool called) {
    if (!called)
        if (const Constant* constant = cls.constant(e.text)) return literal(constant->value, e.position);
    if (const Local* shared = findShared(&cls, e.text)) {
        Operand found = variable(*shared, e.position);
        return called && !arguments.empty() ? index(std::move(found), arguments, e.position) : found;
    }
    std::vector<const Method*> candidates = cls.sharedMethodsNamed(e.text);
    if (candidates.empty()) {
        if (!cls.methodsNamed(e.text).empty() || cls.property(e.text) || findField(&cls, e.text))
            throw SourceError(e.position, "'" + e.text + "' needs an object of the class " + cls.name);
        std::vector<std::string> known;
        for (const Class* c = &cls; c; c = c->superclass) {
            for (auto& m : c->sharedMethods) known.push_back(m->signature.name);
            for (const Constant& k : c->constants) known.push_back(k.name);
            for (auto& [name, local] : shared_[c]) known.push_back(name);
        }
        unknown(e.position, "the class " + cls.name + " has no", e.text, known);
    }
    return invokeMethod(candidates, {}, arguments, e.text, e.position);
}

Operand Compiler::memberOf(Operand base, const ast::Expr& e, const std::vector<const ast::Expr*>& arguments,
                           bool called) {
    const Type* type = base.type;
    if (type->kind == Kind::Array) return arrayMember(std::move(base), e, arguments);
    if (type->kind == Kind::Object || type->kind == Kind::Variant) {
        Class* cls = type->kind == Kind::Variant ? classes().named("Variant") : type->cls;
        if (cls->delegate && sameName(e.text, "Invoke"))
            return invokeDelegate(std::move(base), arguments, e.position);
        std::vector<const Method*> candidates = cls->methodsNamed(e.text);
        std::optional<Operand> found;
        if (const Field* f = findField(cls, e.text)) {
            found = field(std::move(base), *f);
        } else if (const Property* property = cls->property(e.text);
                   property && (candidates.empty() || !called)) {
            if (!property->getter)
                throw SourceError(e.position, cls->name + "." + property->name + " can only be set");
            bool variant = type->kind == Kind::Variant; // nil is a variant like any other
            found = Operand{property->type,
                            [code = base.code, property, type, variant](Frame& f) {
                                ObjectRef object(code(f).object);
                                if (!object && !variant) nilHas(type, property->name);
                                return readProperty(*property, object);
                            },
                            e.position};
        }
        if (found) {
            if (!called || arguments.empty()) return std::move(*found);
            return index(std::move(*found), arguments, e.position);
        }
        if (!candidates.empty())
            return invokeMethod(candidates, std::move(base), arguments, e.text, e.position);
        if (const Constant* constant = cls->constant(e.text)) return literal(constant->value, e.position);
        if (auto shared = cls->sharedMethodsNamed(e.text); !shared.empty())
            return invokeMethod(shared, {}, arguments, e.text, e.position);
        if (findShared(cls, e.text)) return sharedMember(*cls, e, arguments, called);
    }
    // Functions that are called on their first argument.
    std::vector<const Method*> extensions;
    for (const Method* function : functionsNamed(e.text)) {
        if (function->signature.parameters.empty()) continue;
        const Parameter& first = function->signature.parameters[0];
        bool text = type->kind == Kind::String && first.type == type && function->origin == Origin::Framework;
        if ((first.extends && conversionCost(type, first.type) >= 0) || text) extensions.push_back(function);
    }
    if (!extensions.empty())
        return invokeMethod(extensions, {}, arguments, e.text, e.position, true, std::move(base));
    if (type->kind == Kind::Object)
        if (auto lookups = type->cls->methodsNamed("Operator_Lookup"); !lookups.empty()) {
            Literal name{simpleType(Kind::String), Bits(), e.text};
            return invokeMethod(lookups, std::move(base), arguments, "Operator_Lookup", e.position, true,
                                literal(name, e.position));
        }
    unknown(e.position, type->name + " has no", e.text, membersOf(type));
}

// ---- arrays ----------------------------------------------------------------------------------------------

Compiler::ElementIndex Compiler::elementIndex(const std::vector<const ast::Expr*>& indices, const Type* array,
                                              Position position) {
    if (int(indices.size()) != array->rank)
        throw SourceError(position, array->rank == 1
                                        ? "expected one index"
                                        : "expected " + std::to_string(array->rank) + " indices, found " +
                                              std::to_string(indices.size()));
    std::vector<Code> codes;
    for (const ast::Expr* index : indices) codes.push_back(valueAs(*index, integer(), "the index").code);
    if (array->rank == 1) return [code = codes[0]](ArrayObject&, Frame& f) { return code(f).i32; };
    return [codes](ArrayObject& object, Frame& f) {
        std::int32_t at[kMostDimensions];
        for (std::size_t i = 0; i < codes.size(); ++i) at[i] = codes[i](f).i32;
        return arrayOffset(object, at);
    };
}

Operand Compiler::index(Operand array, const std::vector<const ast::Expr*>& arguments, Position position) {
    if (array.type->kind == Kind::Object) {
        if (array.type->cls->delegate) return invokeDelegate(std::move(array), arguments, position);
        if (auto own = array.type->cls->methodsNamed("Operator_Subscript"); !own.empty())
            return invokeMethod(own, std::move(array), arguments, "Operator_Subscript", position);
    }
    if (array.type->kind != Kind::Array)
        throw SourceError(position, "a " + array.type->name + " takes no arguments and has no elements");
    ElementIndex at = elementIndex(arguments, array.type, position);
    const Type* element = array.type->element;
    if (element->kind == Kind::Object && element->cls->copy) // made when it is first used
        return {element,
                [array = array.code, at, cls = element->cls](Frame& f) {
                    ObjectRef object(array(f).object);
                    std::int32_t index = at(arrayIn(object), f);
                    ObjectRef found(arrayGet(arrayIn(object), index).object);
                    if (!found) {
                        found = ObjectRef(newInstance(*cls));
                        arraySet(arrayIn(object), index, Bits::of(Heap::retain(found.handle)));
                    }
                    return Bits::of(found.release());
                },
                position};
    if (array.type->rank > 1)
        return {element,
                [array = array.code, at](Frame& f) {
                    ObjectRef object(array(f).object);
                    std::int32_t index = at(arrayIn(object), f);
                    return arrayGet(arrayIn(object), index);
                },
                position};
    return {element,
            [array = array.code, at = valueAs(*arguments[0], integer(), "").code](Frame& f) {
                ObjectRef object(array(f).object);
                return arrayGet(arrayIn(object), at(f).i32);
            },
            position};
}

namespace {

struct ArrayMember {
    std::string_view declaration; // Element stands for the type of the array's elements
    std::size_t least, most;      // how many arguments

    constexpr std::string_view name() const { return declaration.substr(0, declaration.find_first_of("( ")); }
};

/// What every array has. Indexes count from 0; Element is the type of the elements. Array(1, 2, 3) makes an
/// array of its arguments, and Redim changes its bounds. Arrays of several dimensions have Ubound alone.
///     Dim fruits() As String = Array("fig", "pear", "plum")
constexpr ArrayMember kArrayMembers[] = {
    /// Adds a value at the end.
    ///     fruits.Append("kiwi")
    {"Append(value As Element)", 1, 1},
    /// Inserts a value before an index. Raises OutOfBoundsException beyond the end.
    ///     fruits.Insert(0, "apple")
    {"Insert(index As Integer, value As Element)", 2, 2},
    /// Removes the element at an index. Raises OutOfBoundsException if there is none.
    ///     fruits.Remove(0)
    {"Remove(index As Integer)", 1, 1},
    /// The last index of a dimension, -1 in an empty array. Raises OutOfBoundsException if there is no
    /// such dimension.
    ///     Print Str(fruits.Ubound)
    {"Ubound(dimension As Integer = 1) As Integer", 0, 1},
    /// How many elements there are.
    ///     Print Str(fruits.Count)
    {"Count As Integer", 0, 0},
    /// Sorts numbers or texts upwards, texts without regard to case; a delegate compares two elements
    /// and returns a number below, equal to or above 0.
    ///     fruits.Sort
    {"Sort(compare As Delegate = Nil)", 0, 1},
    /// Removes the last element and returns it. Raises OutOfBoundsException if there is none.
    ///     Print fruits.Pop
    {"Pop As Element", 0, 0},
    /// The index of the first equal element from an index on, or -1 if there is none.
    ///     Print Str(fruits.IndexOf("pear"))
    {"IndexOf(value As Element, start As Integer = 0) As Integer", 1, 2},
    /// Puts the elements into a random order.
    ///     fruits.Shuffle
    {"Shuffle", 0, 0},
    /// Sorts numbers or texts upwards and up to 8 other arrays along with them. Raises
    /// OutOfBoundsException if they differ in length.
    ///     Dim prices() As Double = Array(0.4, 0.3, 0.2)
    ///     Dim names() As String = Array("pear", "fig", "plum")
    ///     names.SortWith(prices)
    {"SortWith(ParamArray others As Array)", 1, 8},
};

} // namespace

Operand Compiler::arrayMember(Operand base, const ast::Expr& e,
                              const std::vector<const ast::Expr*>& arguments) {
    const Type* element = base.type->element;
    const ArrayMember* shape = nullptr;
    std::vector<std::string> known;
    for (const ArrayMember& member : kArrayMembers) {
        if (sameName(member.name(), e.text)) shape = &member;
        known.emplace_back(member.name());
    }
    if (!shape) unknown(e.position, "an array has no", e.text, known);
    if (arguments.size() < shape->least || arguments.size() > shape->most)
        throw SourceError(e.position,
                          std::string(shape->name()) + " takes " + std::to_string(shape->least) +
                              (shape->most > shape->least ? " or " + std::to_string(shape->most) : "") +
                              (shape->most == 1 ? " argument" : " arguments"));
    if (base.type->rank > 1 && !sameName(shape->name(), "Ubound"))
        throw SourceError(e.position, std::string(shape->name()) +
                                          " is for arrays of one dimension, not for " + base.type->name);
    Code array = base.code;
    std::string which(shape->name());
    auto argument = [&](std::size_t i, const Type* type) { return valueAs(*arguments[i], type, which).code; };
    if (which == "Append")
        return {nothing(),
                [array, v = argument(0, element), element](Frame& f) {
                    ObjectRef object(array(f).object);
                    Held value(element, v(f));
                    ArrayObject& a = arrayIn(object);
                    arrayAppend(a, value.take());
                    return Bits();
                },
                e.position};
    if (which == "Insert")
        return {nothing(),
                [array, at = argument(0, integer()), v = argument(1, element), element](Frame& f) {
                    ObjectRef object(array(f).object);
                    std::int32_t index = at(f).i32;
                    Held value(element, v(f));
                    arrayInsert(arrayIn(object), index, value.take());
                    return Bits();
                },
                e.position};
    if (which == "Remove")
        return {nothing(),
                [array, at = argument(0, integer())](Frame& f) {
                    ObjectRef object(array(f).object);
                    arrayRemove(arrayIn(object), at(f).i32);
                    return Bits();
                },
                e.position};
    if (which == "Ubound" && !arguments.empty())
        return {integer(),
                [array, dimension = argument(0, integer())](Frame& f) {
                    ObjectRef object(array(f).object);
                    return Bits::of(arrayExtent(arrayIn(object), dimension(f).i32) - 1);
                },
                e.position};
    if (which == "Ubound" && base.type->rank > 1)
        return {integer(),
                [array](Frame& f) {
                    ObjectRef object(array(f).object);
                    return Bits::of(arrayExtent(arrayIn(object), 1) - 1);
                },
                e.position};
    if (which == "Ubound" || which == "Count") {
        int less = which == "Ubound";
        return {integer(),
                [array, less](Frame& f) {
                    ObjectRef object(array(f).object);
                    return Bits::of(std::int32_t(arrayIn(object).count - less));
                },
                e.position};
    }
    if (which == "SortWith" || (which == "Sort" && !arguments.empty()))
        return sort(std::move(base), e, arguments);
    if (which == "Sort") {
        if (!element->isNumber() && element->kind != Kind::String)
            throw SourceError(e.position, "only numbers and strings can be sorted");
        return {nothing(),
                [array](Frame& f) {
                    ObjectRef object(array(f).object);
                    arraySort(arrayIn(object));
                    return Bits();
                },
                e.position};
    }
    if (which == "Pop")
        return {element,
                [array](Frame& f) {
                    ObjectRef object(array(f).object);
                    ArrayObject& a = arrayIn(object);
                    Bits last = arrayGet(a, a.count - 1);
                    arrayRemove(a, a.count - 1);
                    return last;
                },
                e.position};
    if (which == "IndexOf") {
        Code from = arguments.size() > 1 ? argument(1, integer()) : [](Frame&) { return Bits(); };
        return {integer(),
                [array, v = argument(0, element), from, element](Frame& f) {
                    ObjectRef object(array(f).object);
                    Held value(element, v(f));
                    return Bits::of(arrayIndexOf(arrayIn(object), value.bits, from(f).i32));
                },
                e.position};
    }
    return {nothing(),
            [array](Frame& f) {
                ObjectRef object(array(f).object);
                ArrayObject& a = arrayIn(object);
                int size = elementSize(a.element);
                for (std::int32_t i = a.count - 1; i > 0; --i) {
                    char* x = a.data + i * size;
                    std::swap_ranges(x, x + size, a.data + std::rand() % (i + 1) * size);
                }
                return Bits();
            },
            e.position};
}

namespace {

Code arrayOfElements(const Type* element, std::vector<Code> codes) {
    return [element, codes = std::move(codes)](Frame& f) {
        ObjectRef array(newArray(element));
        for (const Code& code : codes) {
            Bits bits = code(f);
            arrayAppend(arrayOf(array.handle), bits);
        }
        return Bits::of(array.release());
    };
}

} // namespace

// Sort(AddressOf Compare) and SortWith(other, ...).
Operand Compiler::sort(Operand base, const ast::Expr& e, const std::vector<const ast::Expr*>& arguments) {
    const Type* element = base.type->element;
    if (sameName(e.text, "Sort")) {
        Signature comparison{"Compare", {}, integer()};
        for (const char* name : {"a", "b"}) {
            comparison.parameters.emplace_back();
            comparison.parameters.back().name = name;
            comparison.parameters.back().type = element;
        }
        Operand compare = valueAs(*arguments[0], delegateFor(comparison).type, "Sort");
        return {nothing(),
                [array = base.code, compare = compare.code, element, program = &program_](Frame& f) {
                    ObjectRef object(array(f).object), delegate(compare(f).object);
                    arraySort(arrayIn(object), [&](Bits a, Bits b) {
                        Bits values[2] = {retain(element, a), retain(element, b)};
                        return program->callDelegate(delegate, values).i32;
                    });
                    return Bits();
                },
                e.position};
    }
    if (!element->isNumber() && element->kind != Kind::String)
        throw SourceError(e.position, "only numbers and strings can be sorted");
    std::vector<Code> others;
    for (const ast::Expr* argument : arguments) {
        Operand other = value(*argument);
        if (other.type->kind != Kind::Array || other.type->rank > 1)
            throw SourceError(argument->position,
                              "expected an array to sort along, found " + other.type->name);
        others.push_back(std::move(other.code));
    }
    return {nothing(),
            [array = base.code, others](Frame& f) {
                ObjectRef object(array(f).object);
                std::vector<ObjectRef> held;
                std::vector<ArrayObject*> along;
                for (const Code& other : others) held.emplace_back(other(f).object);
                for (const ObjectRef& other : held) along.push_back(&arrayIn(other));
                arraySortWith(arrayIn(object), along);
                return Bits();
            },
            e.position};
}

// Array(a, b, c): of the wanted type, or else the elements' common type.
Operand Compiler::arrayLiteral(const ast::Expr& e, const Type* wanted) {
    if (wanted) {
        std::vector<Code> codes;
        for (const ast::ExprPtr& argument : e.arguments)
            codes.push_back(valueAs(*argument, wanted, "the array").code);
        return {classes().arrayOf(wanted), arrayOfElements(wanted, std::move(codes)), e.position};
    }
    if (e.arguments.empty())
        throw SourceError(e.position, "Array(...) needs at least one element to have a type");
    std::vector<Operand> elements;
    for (const ast::ExprPtr& argument : e.arguments) elements.push_back(value(*argument));
    const Type* element = elements[0].type;
    for (const Operand& operand : elements) {
        if (operand.type == element || operand.type->kind == Kind::Nil) continue;
        if (element->isNumber() && operand.type->isNumber()) {
            if (operand.type->kind > element->kind) element = operand.type;
        } else if (element->kind == Kind::Nil || conversionCost(element, operand.type) >= 0) {
            element = operand.type;
        } else if (conversionCost(operand.type, element) < 0) {
            element = simpleType(Kind::Variant);
        }
    }
    if (element->kind == Kind::Nil) element = simpleType(Kind::Variant);
    std::vector<Code> codes;
    for (Operand& operand : elements) codes.push_back(coerce(std::move(operand), element, "").code);
    return {classes().arrayOf(element), arrayOfElements(element, std::move(codes)), e.position};
}

// ---- calls -----------------------------------------------------------------------------------------------

Operand Compiler::call(const ast::Expr& e) {
    const ast::Expr& callee = *e.a;
    std::vector<const ast::Expr*> arguments = pointers(e.arguments);
    if (callee.kind == ast::ExprKind::RaiseEvent) return raiseEvent(callee, arguments);
    if (callee.kind == ast::ExprKind::Member) {
        Class* cls = findClass(callee); // Module.Class(value)
        if (cls && arguments.size() == 1) return cast(cls->type, *arguments[0]);
        return member(callee, arguments, true);
    }
    if (callee.kind != ast::ExprKind::Name) return index(value(callee), arguments, e.position);

    if (Local* local = findVariable(callee.text))
        return index(variable(*local, callee.position), arguments, e.position);
    if (sameName(callee.text, "Array")) return arrayLiteral(e);
    if (sameName(callee.text, "CType") && arguments.size() == 2) {
        const Type* type = typeFrom(*arguments[1]);
        if (!type) throw SourceError(arguments[1]->position, "expected a type to convert to");
        return cast(type, *arguments[0]);
    }
    if (sameName(callee.text, "Ubound") && (arguments.size() == 1 || arguments.size() == 2)) {
        ast::Expr ubound{ast::ExprKind::Member, callee.position, "Ubound", 0, 0, nullptr, nullptr, {}, {}};
        Operand array = value(*arguments[0]);
        if (array.type->kind != Kind::Array)
            throw SourceError(array.position, "expected an array, found " + array.type->name);
        arguments.erase(arguments.begin());
        return arrayMember(std::move(array), ubound, arguments);
    }
    if (owner_) {
        if (hasSelf_ && (findField(owner_, callee.text) || owner_->property(callee.text) ||
                         !owner_->methodsNamed(callee.text).empty()))
            return memberOf(selfOperand(callee.position), callee, arguments, true);
        if (auto shared = owner_->sharedMethodsNamed(callee.text); !shared.empty())
            return invokeMethod(shared, {}, arguments, callee.text, callee.position);
    }
    if (auto functions = functionsNamed(callee.text); !functions.empty())
        return invokeMethod(functions, {}, arguments, callee.text, callee.position);
    // A type's name converts.
    const Type* type = simpleTypeNamed(callee.text);
    if (!type)
        if (Class* cls = classes().find(callee.text)) type = cls->type;
    if (!type) unknown(callee.position, "there is no", callee.text, namesInScope());
    if (arguments.size() != 1)
        throw SourceError(e.position, "expected one value to convert to " + type->name);
    return cast(type, *arguments[0]);
}

// AddressOf one of several routines waits for the parameter that tells which.
Operand Compiler::argumentValue(const ast::Expr& e) {
    if (e.kind == ast::ExprKind::AddressOf && addressed(e).candidates.size() > 1)
        return {simpleType(Kind::Nil), [](Frame&) { return Bits(); }, e.position};
    Operand result = value(e);
    return result.type->kind == Kind::Object ? kept(e, std::move(result)) : result;
}

Operand Compiler::invokeMethod(const std::vector<const Method*>& candidates, std::optional<Operand> self,
                               const std::vector<const ast::Expr*>& arguments, std::string_view name,
                               Position position, bool virtualCall, std::optional<Operand> first) {
    std::vector<Operand> given;
    std::vector<const Type*> types;
    std::vector<const ast::Expr*> sources = arguments;
    if (first) {
        types.push_back(first->type);
        given.push_back(std::move(*first));
        sources.insert(sources.begin(), nullptr);
    }
    for (const ast::Expr* argument : arguments) {
        given.push_back(argumentValue(*argument));
        types.push_back(given.back().type);
    }
    if (std::all_of(candidates.begin(), candidates.end(),
                    [](const Method* m) { return m->origin == Origin::Program && m->signature.assigns(); }))
        throw SourceError(position, candidates[0]->fullName() + " can only be set");
    Choice choice = chooseOverload(candidates, types, name);
    if (!choice.method) throw SourceError(position, choice.problem);
    const Method& method = *choice.method;
    PreparedArguments prepared = prepare(method, method.signature, std::move(given), sources);
    return emitCall(method, std::move(self), std::move(prepared), position, virtualCall, false);
}

Compiler::PreparedArguments Compiler::prepare(const Method& method, const Signature& signature,
                                              std::vector<Operand> given,
                                              const std::vector<const ast::Expr*>& sources) {
    PreparedArguments result;
    if (signature.parameters.size() > kMostArguments)
        throw SourceError({}, method.fullName() + " has too many parameters");
    for (std::size_t i = 0; i < signature.parameters.size(); ++i) {
        const Parameter& p = signature.parameters[i];
        Target place{};
        // AddressOf one of several routines: the parameter tells which.
        if (i < sources.size() && sources[i] && sources[i]->kind == ast::ExprKind::AddressOf && !p.paramArray)
            given[i] = valueAs(*sources[i], p.type, p.name);
        if (p.paramArray) {
            std::vector<Code> rest;
            for (std::size_t k = i; k < given.size(); ++k)
                rest.push_back(coerce(std::move(given[k]), p.type->element, p.name).code);
            result.operands.push_back({p.type, arrayOfElements(p.type->element, std::move(rest)), {}});
        } else if (i < given.size()) {
            if (p.byRef) {
                if (!sources[i]) throw SourceError(given[i].position, "expected a variable for " + p.name);
                place = this->place(*sources[i]);
            }
            result.operands.push_back(coerce(std::move(given[i]), p.type, p.name));
        } else {
            result.operands.push_back(coerce(literal(*p.defaultValue, {}), p.type, p.name));
        }
        result.places.push_back(std::move(place));
    }
    return result;
}

namespace {

// Evaluated arguments, released unless they were handed over.
struct Evaluated {
    const std::vector<const Type*>& types;
    Bits bits[kMostArguments];
    std::size_t count = 0;

    Evaluated(const std::vector<const Type*>& types, const std::vector<Code>& codes, Frame& frame)
        : types(types) {
        try {
            for (; count < codes.size(); ++count) bits[count] = codes[count](frame);
        } catch (...) {
            releaseAll();
            throw;
        }
    }
    ~Evaluated() { releaseAll(); }
    void handOver() { count = 0; }

  private:
    void releaseAll() {
        while (count > 0) {
            --count;
            release(types[count], bits[count]);
        }
    }
};

} // namespace

Operand Compiler::emitCall(const Method& method, std::optional<Operand> self, PreparedArguments arguments,
                           Position position, bool virtualCall, bool setter) {
    std::vector<Code> codes;
    std::vector<const Type*> types;
    for (Operand& operand : arguments.operands) {
        codes.push_back(std::move(operand.code));
        types.push_back(operand.type);
    }
    const Type* result = setter || !method.signature.result ? nothing() : method.signature.result;
    Code selfCode = self ? self->code : Code();
    const Type* selfType = self ? self->type : nullptr;
    Program* program = &program_;
    const Method* m = &method;

    if (method.routine) {
        bool anyByRef = std::any_of(arguments.places.begin(), arguments.places.end(),
                                    [](const Target& p) { return p.store != nullptr; });
        std::vector<Target> places = anyByRef ? std::move(arguments.places) : std::vector<Target>();
        return {result,
                [=](Frame& f) {
                    ObjectRef object(selfCode ? selfCode(f).object : nullptr);
                    if (selfCode && !object) nilHas(selfType, m->signature.name);
                    Evaluated values(types, codes, f);
                    const Routine& routine =
                        object && virtualCall ? program->dispatch(*m->routine, object) : *m->routine;
                    values.handOver();
                    Bits answer = program->call(routine, object, values.bits);
                    for (std::size_t i = 0; i < places.size(); ++i)
                        if (places[i].store) places[i].store(f, values.bits[i]);
                    return answer;
                },
                position};
    }
    if (!(setter ? method.setter : method.function))
        throw SourceError(position, method.fullName() + " has no function to call");
    return {result,
            [=](Frame& f) {
                ObjectRef object(selfCode ? selfCode(f).object : nullptr);
                if (selfCode && !object) nilHas(selfType, m->signature.name);
                Evaluated values(types, codes, f);
                if (!setter) return invoke(*m, object, values.bits);
                invokeSetter(*m, object, values.bits);
                return Bits();
            },
            position};
}

Operand Compiler::create(const ast::Expr& e) {
    const Type* type = resolveType(e.type);
    if (type->kind != Kind::Object)
        throw SourceError(e.type.position, "expected a class after 'New', found " + type->name);
    Class* cls = type->cls;
    if (cls->isInterface)
        throw SourceError(e.type.position,
                          cls->name + " is an interface; expected a class that implements it");
    if (cls->delegate) {
        if (e.arguments.size() != 1 || e.arguments[0]->kind != ast::ExprKind::AddressOf)
            throw SourceError(e.position, "expected AddressOf: New " + cls->name + "(AddressOf ...)");
        return valueAs(*e.arguments[0], type, "");
    }
    std::vector<const Method*> constructors = cls->constructors();
    auto made = [cls](Frame&) { return Bits::of(newInstance(*cls)); };
    bool needsNone = constructors.empty() || cls->origin == Origin::Plugin;
    for (const Method* m : constructors)
        if (m->signature.requiredCount() == 0) needsNone = false;
    if (e.arguments.empty() && needsNone) return {type, made, e.position};
    if (constructors.empty())
        throw SourceError(e.position, cls->name + " has no Constructor, so New takes no arguments");

    // A slot holds the new object while its Constructor runs.
    int slot = newSlot();
    Operand waiting{type, [slot](Frame& f) { return Bits::of(Heap::retain(f.slots[slot].object)); },
                    e.position};
    Operand construct =
        invokeMethod(constructors, waiting, pointers(e.arguments), "New " + cls->name, e.position, false);
    return {type,
            [cls, slot, code = construct.code](Frame& f) {
                ObjectRef outer(std::exchange(
                    f.slots[slot].object, newInstance(*cls))); // this New may be nested in its own arguments
                try {
                    code(f);
                } catch (...) {
                    heap().release(std::exchange(f.slots[slot].object, outer.release()));
                    throw;
                }
                return Bits::of(std::exchange(f.slots[slot].object, outer.release()));
            },
            e.position};
}

// ---- assignment ------------------------------------------------------------------------------------------

Target Compiler::placeOf(const Local& local, const ast::Expr& e) {
    if (local.constant) throw SourceError(e.position, "'" + e.text + "' is a constant");
    Target result{local.type, nullptr};
    if (Bits* address = local.address)
        result.address = [address](Frame&) { return address; };
    else
        result.address = [slot = local.slot](Frame& f) { return &f.slots[slot]; };
    if (local.type->isCounted())
        result.store = [address = result.address, type = local.type](Frame& f, Bits bits) {
            release(type, std::exchange(*address(f), bits));
        };
    else if (Bits* address = local.address)
        result.store = [address](Frame&, Bits bits) { *address = bits; };
    else
        result.store = [slot = local.slot](Frame& f, Bits bits) { f.slots[slot] = bits; };
    return result;
}

Target Compiler::place(const ast::Expr& e) {
    auto fieldPlace = [](Operand object, const Field& field) {
        Target result{field.type, nullptr};
        result.store = [code = object.code, field, type = object.type](Frame& f, Bits bits) {
            Held value(field.type, bits);
            ObjectRef held(code(f).object);
            if (!held) nilHas(type, field.name);
            if (field.length >= 0 && bytesOf(value.bits.string).size() > std::size_t(field.length)) {
                StringRef whole(value.take().string);
                value.bits.string =
                    heap().newString(bytesOf(whole).substr(0, std::size_t(field.length)), encodingOf(whole));
            }
            std::swap(dataAt<Bits>(held, field.offset), value.bits);
        };
        return result;
    };
    auto propertyPlace = [&](Operand object, const Property& property) {
        if (!property.setter)
            throw SourceError(e.position, property.owner->name + "." + property.name + " is read only");
        Target result{property.type, nullptr};
        result.store = [code = object.code, p = &property, type = object.type](Frame& f, Bits bits) {
            Held value(p->type, bits);
            ObjectRef held(code(f).object);
            if (!held) nilHas(type, p->name);
            writeProperty(*p, held, value.take());
        };
        return result;
    };
    switch (e.kind) {
    case ast::ExprKind::Name:
        if (Local* local = findVariable(e.text)) return placeOf(*local, e);
        if (hasSelf_) {
            if (const Field* f = findField(owner_, e.text)) return fieldPlace(selfOperand(e.position), *f);
            if (const Property* p = owner_->property(e.text))
                return propertyPlace(selfOperand(e.position), *p);
        }
        break;
    case ast::ExprKind::Member: {
        if (Class* cls = findClass(*e.a)) {
            if (Local* shared = findShared(cls, e.text)) return placeOf(*shared, e);
            break;
        }
        Operand base = value(*e.a);
        if (base.type->kind != Kind::Object) break;
        if (Local* shared = findShared(base.type->cls, e.text)) return placeOf(*shared, e);
        if (const Field* f = findField(base.type->cls, e.text)) return fieldPlace(std::move(base), *f);
        if (const Property* p = base.type->cls->property(e.text)) return propertyPlace(std::move(base), *p);
        break;
    }
    case ast::ExprKind::Call: {
        Operand array = value(*e.a);
        if (array.type->kind != Kind::Array) break;
        ElementIndex at = elementIndex(pointers(e.arguments), array.type, e.position);
        const Type* element = array.type->element;
        Target result{element, nullptr};
        result.store = [array = array.code, at, element](Frame& f, Bits bits) {
            Held value(element, bits);
            ObjectRef object(array(f).object);
            ArrayObject& target = arrayIn(object);
            std::int32_t index = at(target, f);
            arraySet(target, index, value.take());
        };
        return result;
    }
    default:
        break;
    }
    throw SourceError(e.position, "expected a variable, a property or an element of an array");
}

Action Compiler::assign(const ast::Expr& target, const ast::Expr& valueSource) {
    // Methods that take a value: object.Method(arguments) = value.
    const ast::Expr& callee = target.kind == ast::ExprKind::Call ? *target.a : target;
    std::vector<const ast::Expr*> arguments =
        target.kind == ast::ExprKind::Call ? pointers(target.arguments) : std::vector<const ast::Expr*>();
    auto takesValue = [](const std::vector<const Method*>& candidates) {
        return std::any_of(candidates.begin(), candidates.end(),
                           [](const Method* m) { return m->setter || m->signature.assigns(); });
    };
    if (callee.kind == ast::ExprKind::Name && !findVariable(callee.text)) {
        std::vector<const Method*> candidates = functionsNamed(callee.text);
        std::optional<Operand> self;
        if (hasSelf_ && !owner_->methodsNamed(callee.text).empty()) {
            candidates = owner_->methodsNamed(callee.text);
            self = selfOperand(callee.position);
        } else if (owner_ && !owner_->sharedMethodsNamed(callee.text).empty()) {
            candidates = owner_->sharedMethodsNamed(callee.text);
        }
        bool isField = hasSelf_ && (findField(owner_, callee.text) || owner_->property(callee.text));
        if (!isField && takesValue(candidates))
            return assignThroughMethod(candidates, std::move(self), arguments, value(valueSource),
                                       callee.text, callee.position);
        if (!isField && candidates.empty() && !classes().find(callee.text))
            unknown(callee.position, "there is no", callee.text, namesInScope());
    }
    if (callee.kind == ast::ExprKind::Member && findClass(*callee.a)) {
        Class* cls = findClass(*callee.a);
        std::vector<const Method*> candidates = cls->sharedMethodsNamed(callee.text);
        if (takesValue(candidates))
            return assignThroughMethod(candidates, {}, arguments, value(valueSource), callee.text,
                                       callee.position);
        if (cls->constant(callee.text))
            throw SourceError(callee.position, "'" + callee.text + "' is a constant");
    } else if (callee.kind == ast::ExprKind::Member) {
        Operand base = value(*callee.a);
        if (base.type->kind == Kind::Object) {
            Class* cls = base.type->cls;
            std::vector<const Method*> candidates = cls->methodsNamed(callee.text);
            bool isField =
                findField(cls, callee.text) || cls->property(callee.text) || findShared(cls, callee.text);
            if (auto lookups = cls->methodsNamed("Operator_Lookup");
                !isField && candidates.empty() && takesValue(lookups)) {
                Literal name{simpleType(Kind::String), Bits(), callee.text};
                return assignThroughMethod(lookups, std::move(base), arguments, value(valueSource),
                                           "Operator_Lookup", callee.position,
                                           literal(name, callee.position));
            }
            if (!isField && takesValue(candidates))
                return assignThroughMethod(candidates, std::move(base), arguments, value(valueSource),
                                           callee.text, callee.position);
            if (!isField && !candidates.empty() &&
                !(candidates[0]->signature.result && candidates[0]->signature.result->kind == Kind::Array))
                throw SourceError(callee.position, cls->name + "." + callee.text + " cannot be assigned to");
            if (!isField && candidates.empty())
                unknown(callee.position, cls->name + " has no", callee.text, membersOf(base.type));
        }
    }
    if (target.kind == ast::ExprKind::Call && typeFrom(*target.a) == nullptr) {
        Operand base = value(*target.a);
        if (base.type->kind == Kind::Object)
            if (auto own = base.type->cls->methodsNamed("Operator_Subscript"); takesValue(own))
                return assignThroughMethod(own, std::move(base), arguments, value(valueSource),
                                           "Operator_Subscript", target.position);
    }
    Target to = place(target);
    Operand from = valueAs(valueSource, to.type, "the assignment");
    return [store = std::move(to.store), code = std::move(from.code)](Frame& f) {
        store(f, code(f));
        return Flow::Next;
    };
}

Action Compiler::assignThroughMethod(const std::vector<const Method*>& candidates,
                                     std::optional<Operand> self,
                                     const std::vector<const ast::Expr*>& arguments, Operand value,
                                     std::string_view name, Position position, std::optional<Operand> first) {
    std::vector<Operand> given;
    std::vector<const Type*> types;
    std::vector<const ast::Expr*> sources = arguments;
    if (first) {
        given.push_back(std::move(*first));
        sources.insert(sources.begin(), nullptr);
    }
    for (const ast::Expr* argument : arguments) given.push_back(this->value(*argument));
    given.push_back(std::move(value));
    sources.push_back(nullptr);
    for (const Operand& operand : given) types.push_back(operand.type);
    Choice choice = chooseOverload(candidates, types, name, true);
    if (!choice.method) throw SourceError(position, choice.problem);
    const Method& method = *choice.method;
    bool setter = method.setter != nullptr;
    PreparedArguments prepared =
        prepare(method, setter ? method.setterSignature() : method.signature, std::move(given), sources);
    Operand call = emitCall(method, std::move(self), std::move(prepared), position, true, setter);
    return [code = std::move(call.code)](Frame& f) {
        code(f);
        return Flow::Next;
    };
}

} // namespace studio
