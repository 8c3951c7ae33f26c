#include "runtime/class_table.h"

#include "runtime/arrays.h"
#include "syntax/names.h"

namespace studio {

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
    std::string key = folded(name);
    if (auto other = aliases_.find(key); other != aliases_.end()) return other->second->cls;
    auto found = classes_.find(key);
    return found != classes_.end() && found->second->isDefined() ? found->second.get() : nullptr;
}

const Type* ClassTable::arrayOf(const Type* element, int rank) {
    auto& slot = arrayTypes_[{element, rank}];
    if (!slot) {
        std::string dimensions = "(" + std::string(std::size_t(rank - 1), ',') + ")";
        slot = std::make_unique<Type>(Type{Kind::Array, element->name + dimensions, nullptr, element, rank});
        // An array is an object, too. Its class has the type's name, and only the heap uses it.
        Class* cls = named(slot->name);
        cls->origin = Origin::Framework;
        cls->superclass = root_;
        cls->instanceSize = sizeof(ArrayObject);
        cls->arrayElement = element;
        cls->arrayRank = rank;
        slot->cls = cls;
    }
    return slot.get();
}

void ClassTable::makeEnumeration(Class& cls, Kind kind) {
    auto& type = enumerationTypes_[&cls];
    type = std::make_unique<Type>(Type{kind, cls.name, &cls});
    cls.type = type.get();
}

void ClassTable::alias(std::string_view name, const Type* type) { aliases_[folded(name)] = type; }

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
