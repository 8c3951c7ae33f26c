#include "runtime/model.h"

#include "syntax/names.h"

#include <algorithm>

namespace studio {

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
    for (const Class* c = this; c; c = c->superclass) {
        if (c == ancestor) return true;
        for (const Class* interface : c->interfaces)
            if (interface->isA(ancestor)) return true;
    }
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

} // namespace studio
