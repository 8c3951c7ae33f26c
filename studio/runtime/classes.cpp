// The class table: names, types, declarations.
#include "language/parser.h"
#include "runtime/runtime.h"

#include <algorithm>

namespace studio {

// ---- the model -------------------------------------------------------------------------------------------

std::string Signature::text() const {
    std::string result = name + "(";
    for (const Parameter& p : parameters) {
        if (&p != &parameters.front()) result += ", ";
        if (p.byRef) result += "ByRef ";
        if (p.assigns) result += "Assigns ";
        if (p.paramArray) result += "ParamArray ";
        result += p.name + " As " + p.type->name;
    }
    return result + ")" + (this->result ? " As " + this->result->name : "");
}

std::size_t Signature::requiredCount() const {
    std::size_t count = 0;
    for (const Parameter& p : parameters) count += !p.defaultValue && !p.paramArray && !p.assigns;
    return count;
}

bool sameSignature(const Signature& a, const Signature& b) {
    if (!sameName(a.name, b.name) || a.result != b.result || a.parameters.size() != b.parameters.size())
        return false;
    for (std::size_t i = 0; i < a.parameters.size(); ++i)
        if (a.parameters[i].type != b.parameters[i].type ||
            a.parameters[i].assigns != b.parameters[i].assigns ||
            a.parameters[i].byRef != b.parameters[i].byRef)
            return false;
    return true;
}

Signature Method::setterSignature() const {
    Signature result = signature;
    Parameter value;
    value.name = "value";
    value.type = signature.result;
    value.assigns = true;
    result.parameters.push_back(value);
    result.result = nullptr;
    return result;
}

std::string Method::fullName() const { return owner ? owner->name + "." + signature.name : signature.name; }

bool Class::isA(const Class* ancestor) const {
    for (const Class* c = this; c; c = c->superclass)
        if (c == ancestor) return true;
    return false;
}

const Property* Class::property(std::string_view wanted) const {
    for (const Class* c = this; c; c = c->superclass)
        for (const Property& p : c->properties)
            if (sameName(p.name, wanted)) return &p;
    return nullptr;
}

const Constant* Class::constant(std::string_view wanted) const {
    for (const Class* c = this; c; c = c->superclass)
        for (const Constant& k : c->constants)
            if (sameName(k.name, wanted)) return &k;
    return nullptr;
}

const Method* Class::method(std::string_view declaration) const {
    for (auto* list : {&methods, &sharedMethods})
        for (auto& m : *list)
            if (m->declaration == declaration) return m.get();
    return nullptr;
}

namespace {

bool sameParameters(const Signature& a, const Signature& b) {
    return std::equal(a.parameters.begin(), a.parameters.end(), b.parameters.begin(), b.parameters.end(),
                      [](const Parameter& x, const Parameter& y) { return x.type == y.type; });
}

std::vector<const Method*> collect(const Class* cls, std::vector<std::unique_ptr<Method>> Class::*list,
                                   std::string_view name) {
    std::vector<const Method*> result;
    for (const Class* c = cls; c; c = c->superclass)
        for (auto& m : c->*list) {
            if (!sameName(m->signature.name, name)) continue;
            bool replaced = std::any_of(result.begin(), result.end(), [&](const Method* own) {
                return sameParameters(own->signature, m->signature);
            });
            if (!replaced) result.push_back(m.get());
        }
    return result;
}

} // namespace

std::vector<const Method*> Class::methodsNamed(std::string_view wanted) const {
    return collect(this, &Class::methods, wanted);
}

std::vector<const Method*> Class::sharedMethodsNamed(std::string_view wanted) const {
    return collect(this, &Class::sharedMethods, wanted);
}

std::vector<const Method*> Class::constructors() const {
    for (const Class* c = this; c; c = c->superclass) {
        std::vector<const Method*> result;
        for (auto& m : c->methods)
            if (sameName(m->signature.name, "Constructor")) result.push_back(m.get());
        if (!result.empty()) return result;
    }
    return {};
}

// ---- the table -------------------------------------------------------------------------------------------

ClassTable::ClassTable() {
    root_ = named("Object");
    define(*root_, Origin::Framework, nullptr, 0);
}

Class* ClassTable::named(std::string_view name) {
    auto& slot = classes_[folded(name)];
    if (!slot) {
        slot = std::make_unique<Class>();
        slot->name = name;
        auto& type = classTypes_[slot.get()];
        type = std::make_unique<Type>(Type{Kind::Object, slot->name, slot.get()});
        slot->type = type.get();
    }
    return slot.get();
}

Class* ClassTable::find(std::string_view name) const {
    auto found = classes_.find(folded(name));
    return found != classes_.end() && found->second->isDefined() ? found->second.get() : nullptr;
}

const Type* ClassTable::arrayOf(const Type* element) {
    auto& slot = arrayTypes_[element];
    if (!slot) {
        slot = std::make_unique<Type>(Type{Kind::Array, element->name + "()", nullptr, element});
        // An array is an object, too: its class is named as its type, and only the heap knows it.
        Class* cls = named(slot->name);
        cls->origin = Origin::Framework;
        cls->superclass = root_;
        cls->instanceSize = sizeof(ArrayObject);
        cls->arrayElement = element;
        slot->cls = cls;
    }
    return slot.get();
}

const Type* ClassTable::typeNamed(const ast::TypeName& name) {
    const Type* type = simpleTypeNamed(name.name);
    if (!type) type = named(name.name)->type;
    return name.array ? arrayOf(type) : type;
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
                throw SourceError(p.position, "the default of " + p.name + " is no " + parameter.type->name);
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

void ClassTable::define(Class& cls, Origin origin, Class* superclass, std::int32_t dataSize) {
    cls.origin = origin;
    cls.superclass = superclass ? superclass : (&cls == root_ ? nullptr : root_);
    cls.dataSize = dataSize;
    cls.dataOffset = cls.superclass ? cls.superclass->instanceSize : kREALInstanceDataOffset;
    cls.instanceSize = (cls.dataOffset + dataSize + 3) & ~3;
    order_.push_back(&cls);
}

std::unique_ptr<Method> ClassTable::makeMethod(std::string_view declaration, Class* owner, bool shared,
                                               Origin origin) {
    auto method = std::make_unique<Method>();
    method->declaration = declaration;
    method->signature = parse(declaration);
    method->owner = owner;
    method->shared = shared;
    method->origin = origin;
    return method;
}

Method* ClassTable::addFunction(std::unique_ptr<Method> function) {
    functionIndex_[folded(function->signature.name)].push_back(function.get());
    functions_.push_back(std::move(function));
    return functions_.back().get();
}

const std::vector<const Method*>& ClassTable::functionsNamed(std::string_view name) const {
    static const std::vector<const Method*> none;
    auto found = functionIndex_.find(folded(name));
    return found == functionIndex_.end() ? none : found->second;
}

const Method* findMethodBySignature(const Class& cls, const Signature& wanted, bool& setter) {
    for (const Method* m : cls.methodsNamed(wanted.name)) {
        setter = false;
        if (m->function && sameSignature(m->signature, wanted)) return m;
        setter = true;
        if (m->setter && sameSignature(m->setterSignature(), wanted)) return m;
    }
    return nullptr;
}

} // namespace studio
