// The types that a program declares besides classes: enumerations, structures, delegates, interfaces; events
// and shared properties.
#include "compiler.h"
#include "runtime/delegates.h"
#include "runtime/objects.h"
#include "runtime/references.h"
#include "runtime/variants.h"
#include "syntax/ast.h"
#include "syntax/names.h"

namespace studio {

bool Compiler::nameIsFree(const std::string& name, Position position) {
    Class* known = classes().find(name);
    if (!known && !simpleTypeNamed(name)) return true;
    errors_.emplace_back(position, "there is already a class '" + name + "'");
    return false;
}

void Compiler::defineEnumeration(const ast::Enumeration& source) {
    if (!nameIsFree(source.name, source.position)) return;
    Kind kind = Kind::Int32;
    if (!source.type.name.empty()) {
        const Type* type = simpleTypeNamed(source.type.name);
        if (!type || !type->isInteger() || source.type.rank)
            throw SourceError(source.type.position, "expected an integer type for the enum's values");
        kind = type->kind;
    }
    Class& cls = *classes().named(source.name);
    cls.name = source.name;
    classes().define(cls, Origin::Program, nullptr, 0);
    classes().makeEnumeration(cls, kind);
    if (!source.outer.empty()) classes().alias(source.outer + "." + source.name, cls.type);
    std::int64_t next = 0;
    for (const ast::Variable& member : source.members) {
        if (cls.constant(member.name))
            throw SourceError(member.position, source.name + " already has a value '" + member.name + "'");
        if (member.initial) {
            Operand value = valueAs(*member.initial, simpleType(Kind::Int64), "the enum's value");
            if (!value.constant) throw SourceError(member.initial->position, "expected a constant");
            next = value.constant->bits.i64;
        }
        Bits bits = convert(simpleType(Kind::Int64), simpleType(kind), Bits::of(next++));
        cls.constants.push_back({member.name, member.name, Literal{cls.type, bits, {}}});
    }
}

void Compiler::defineDelegate(const ast::Delegate& source) {
    const std::string& name = source.signature.name;
    if (!nameIsFree(name, source.signature.position)) return;
    Class& cls = *classes().named(name);
    cls.name = name;
    for (const ast::Parameter& p : source.signature.parameters) resolveType(p.type);
    if (source.signature.result) resolveType(*source.signature.result);
    makeDelegateClass(cls, classes().resolve(source.signature));
    if (!source.outer.empty()) classes().alias(source.outer + "." + name, cls.type);
}

void Compiler::declareTypes() {
    for (const ast::Enumeration& source : source_.enumerations) try {
            defineEnumeration(source);
        } catch (const SourceError& error) {
            errors_.push_back(error);
        }
}

// ---- structures ------------------------------------------------------------------------------------------

void Compiler::defineStructure(const ast::ClassDeclaration& source, Class& cls) {
    std::int32_t size = 0;
    for (std::size_t i = 0; i < fields_[&cls].size(); ++i) {
        const Field& field = fields_[&cls][i];
        const Type* type = field.type;
        bool structure = type->kind == Kind::Object && type->cls->copy;
        if (type->kind == Kind::Object && !structure && !type->cls->delegate)
            throw SourceError(
                source.properties[i].type.position,
                "a Structure holds numbers, text and Structures, not a " + type->name +
                    (type->cls->origin == Origin::Program ? "; if it is a Structure, declare it above" : ""));
        std::int32_t bytes = field.length >= 0 ? field.length
                             : structure       ? cls.constant("Size")->value.bits.i32
                                               : elementSize(type);
        if (structure) bytes = type->cls->constant("Size")->value.bits.i32;
        size += bytes;
    }
    cls.copy = [fields = fields_[&cls]](REALobject to, REALobject from) {
        for (const Field& field : fields) {
            Bits& target = dataAt<Bits>(to, field.offset);
            Bits value = dataAt<Bits>(from, field.offset);
            if (field.type->kind == Kind::Object && field.type->cls->copy) {
                field.type->cls->copy(target.object, value.object);
            } else if (field.type->kind == Kind::Array) {
                ArrayObject& original = arrayOf(value.object);
                ObjectRef copy(newArray(original.element, original.count));
                for (std::int32_t i = 0; i < original.count; ++i)
                    arraySet(arrayOf(copy), i, arrayGet(original, i));
                release(field.type, std::exchange(target, Bits::of(copy.release())));
            } else {
                retain(field.type, value);
                release(field.type, std::exchange(target, value));
            }
        }
    };
    cls.constants.push_back({"Size", "Size", Literal{simpleType(Kind::Int32), Bits::of(size), {}}});
}

// ---- interfaces ------------------------------------------------------------------------------------------

void Compiler::checkInterfaces(const ast::ClassDeclaration& source, const Class& cls) {
    if (cls.isInterface) return;
    for (std::size_t i = 0; i < cls.interfaces.size(); ++i) {
        for (auto& wanted : cls.interfaces[i]->methods) {
            bool found = false;
            for (const Method* own : cls.methodsNamed(wanted->signature.name))
                found |= sameSignature(own->signature, wanted->signature);
            if (!found)
                throw SourceError(source.interfaces[i].position, cls.name + " does not implement " +
                                                                     wanted->signature.text() + " of " +
                                                                     cls.interfaces[i]->name);
        }
    }
}

// ---- shared properties -----------------------------------------------------------------------------------

void Compiler::declareShared(const ast::Variable& source, Class& cls) {
    const Type* type = resolveType(source.type);
    program_.globals.push_back({source.name, type, Bits()});
    Local local;
    local.type = type;
    local.address = &program_.globals.back().bits;
    shared_[&cls][folded(source.name)] = local;
    Code initial = source.initial ? valueAs(*source.initial, type, "'" + source.name + "'").code
                                  : emptyValue(source, type);
    if (!initial) return;
    preparations_.push_back([initial, type, address = local.address](Frame& f) {
        release(type, std::exchange(*address, initial(f)));
        return Flow::Next;
    });
}

// ---- events ----------------------------------------------------------------------------------------------

// An event is a method that only its class can call. A subclass handles it by a method of its own; otherwise
// the delegate is called that AddHandler gave.
void Compiler::defineEvent(const ast::Signature& source, Class& cls, std::int32_t handler) {
    if (findEvent(&cls, source.name))
        throw SourceError(source.position, "there is already an event '" + source.name + "'");
    for (const ast::Parameter& p : source.parameters) resolveType(p.type);
    if (source.result) resolveType(*source.result);
    program_.events.emplace_back();
    Method& method = program_.events.back();
    method.signature = classes().resolve(source);
    method.owner = &cls;
    method.origin = Origin::Program;
    program_.routines.emplace_back();
    Routine& routine = program_.routines.back();
    routine.method = &method;
    routine.owner = &cls;
    for (const Parameter& p : method.signature.parameters) {
        routine.parameters.push_back(p.type);
        routine.byRef.push_back(p.byRef);
    }
    routine.slotCount = int(routine.parameters.size());
    method.routine = &routine;
    routine.body = [handler, types = routine.parameters, byRef = routine.byRef,
                    program = &program_](Frame& f) {
        ObjectRef delegate(Heap::retain(dataAt<Bits>(f.self, handler).object));
        if (!delegate) return Flow::Next;
        std::vector<Bits> arguments = {Bits::of(Heap::retain(f.self))};
        for (std::size_t i = 0; i < types.size(); ++i) arguments.push_back(retain(types[i], f.slots[i]));
        f.result = program->callDelegate(delegate, arguments.data());
        for (std::size_t i = 0; i < types.size(); ++i)
            if (byRef[i]) release(types[i], std::exchange(f.slots[i], arguments[i + 1]));
        return Flow::Next;
    };
    events_[&cls].push_back({source.name, &method, handler});
}

const Compiler::Event* Compiler::findEvent(const Class* cls, std::string_view name) const {
    for (const Class* c = cls; c; c = c->superclass)
        if (auto found = events_.find(c); found != events_.end())
            for (const Event& event : found->second)
                if (sameName(event.name, name)) return &event;
    return nullptr;
}

} // namespace studio
