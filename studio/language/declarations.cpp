// Classes, routines and globals of a program, and the names in scope.
#include "compiler.h"
#include "runtime/arrays.h"
#include "runtime/references.h"
#include "syntax/ast.h"
#include "syntax/names.h"
#include "syntax/parser.h"
#include "targets.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <sstream>
#include <tuple>

namespace studio {

// ---- names -----------------------------------------------------------------------------------------------

Local* Compiler::findVariable(std::string_view name) {
    std::string key = folded(name);
    for (auto scope = scopes_.rbegin(); scope != scopes_.rend(); ++scope)
        if (auto found = scope->names.find(key); found != scope->names.end()) return &found->second;
    // A class's own members come before globals.
    if (hasSelf_ && (findField(owner_, name) || owner_->property(name))) return nullptr;
    if (owner_)
        if (Local* shared = findShared(owner_, name)) return shared;
    auto found = globals_.find(key);
    if (found == globals_.end()) {
        for (const Class* module : modules_)
            if (Local* shared = findShared(module, name)) return shared;
        return nullptr;
    }
    if (!found->second.declaredYet && routine_ == &program_.main) return nullptr;
    return &found->second;
}

Local* Compiler::findShared(const Class* cls, std::string_view name) {
    for (const Class* c = cls; c; c = c->superclass)
        if (auto found = shared_.find(c); found != shared_.end())
            if (auto entry = found->second.find(folded(name)); entry != found->second.end())
                return &entry->second;
    return nullptr;
}

std::vector<const Method*> Compiler::functionsNamed(std::string_view name) const {
    std::vector<const Method*> result = classes().functionsNamed(name);
    for (const Class* module : modules_) {
        std::vector<const Method*> own = module->sharedMethodsNamed(name);
        result.insert(result.end(), own.begin(), own.end());
    }
    return result;
}

const Constant* Compiler::moduleConstant(std::string_view name) const {
    for (const Class* module : modules_)
        if (const Constant* constant = module->constant(name)) return constant;
    return nullptr;
}

const Compiler::Field* Compiler::findField(const Class* cls, std::string_view name) const {
    for (const Class* c = cls; c; c = c->superclass)
        if (auto found = fields_.find(c); found != fields_.end())
            for (const Field& field : found->second)
                if (sameName(field.name, name)) return &field;
    return nullptr;
}

Class* Compiler::findClass(const ast::Expr& e) const {
    if (e.kind == ast::ExprKind::Member && e.a->kind == ast::ExprKind::Name && findClass(*e.a))
        return classes().find(e.a->text + "." + e.text); // Module.Class
    if (e.kind != ast::ExprKind::Name || const_cast<Compiler*>(this)->findVariable(e.text)) return nullptr;
    if (hasSelf_ && (findField(owner_, e.text) || owner_->property(e.text))) return nullptr;
    return classes().find(e.text);
}

Local& Compiler::declareLocal(const std::string& name, Position position, const Type* type) {
    Scope& scope = scopes_.back();
    Local local;
    local.type = type;
    local.slot = newSlot();
    auto [entry, fresh] = scope.names.try_emplace(folded(name), local);
    if (!fresh && name[0] != '(')
        throw SourceError(position, "there is already a variable '" + name + "' here");
    entry->second = local;
    if (type->isCounted()) scope.counted.emplace_back(local.slot, type);
    return entry->second;
}

void Compiler::unknown(Position position, const std::string& what, std::string_view name,
                       const std::vector<std::string>& known) {
    if (auto global = globals_.find(folded(name)); global != globals_.end() && !global->second.declaredYet)
        throw SourceError(position, what + " '" + std::string(name) + "' yet: its Dim comes later");
    SourceError error(position, what + " '" + std::string(name) + "'" + suggestion(name, known));
    error.unknownName = true;
    error.consequence = spoilt_.contains(folded(name));
    throw error;
}

std::vector<std::string> Compiler::namesInScope() const {
    std::vector<std::string> result;
    for (const Scope& scope : scopes_)
        for (auto& [name, local] : scope.names) result.push_back(name);
    for (const auto& [name, local] : globals_) result.push_back(name);
    for (auto& function : classes().functions()) result.push_back(function->signature.name);
    for (const Class* cls : classes().definitionOrder()) result.push_back(cls->name);
    if (owner_)
        for (const std::string& member : membersOf(owner_->type)) result.push_back(member);
    return result;
}

std::vector<std::string> Compiler::membersOf(const Type* type) const {
    std::vector<std::string> result;
    const Class* cls = type->kind == Kind::Variant ? classes().named("Variant") : type->cls;
    for (const Class* c = cls; c; c = c->superclass) {
        for (const Property& p : c->properties) result.push_back(p.name);
        for (auto& m : c->methods) result.push_back(m->signature.name);
        if (auto found = fields_.find(c); found != fields_.end())
            for (const Field& field : found->second) result.push_back(field.name);
        if (auto found = shared_.find(c); found != shared_.end())
            for (auto& [name, local] : found->second) result.push_back(name);
    }
    if (type->kind == Kind::String || type->kind == Kind::Color)
        for (auto& function : classes().functions())
            if (!function->signature.parameters.empty() && function->signature.parameters[0].type == type)
                result.push_back(function->signature.name);
    return result;
}

const Type* Compiler::resolveType(const ast::TypeName& name) {
    const Type* type = classes().typeNamed(name);
    if (name.rank > kMostDimensions)
        throw SourceError(name.position,
                          "an array has at most " + std::to_string(kMostDimensions) + " dimensions");
    const Type* inner = type->kind == Kind::Array ? type->element : type;
    if (inner->kind == Kind::Object && !inner->cls->isDefined()) {
        std::vector<std::string> known = {"Integer", "Int64",  "Single", "Double",
                                          "Boolean", "String", "Color",  "Variant"};
        for (const Class* cls : classes().definitionOrder()) known.push_back(cls->name);
        unknown(name.position, "there is no type", name.name, known);
    }
    return type;
}

Local Compiler::constantOf(const ast::Variable& variable) {
    // No scope need be open: a constant's value consists of literals and constants.
    Operand operand = value(*variable.initial);
    if (!operand.constant)
        throw SourceError(variable.initial->position, "expected a literal value for the constant");
    Local result;
    result.constant = operand.constant;
    result.type = operand.type;
    return result;
}

// ---- classes ---------------------------------------------------------------------------------------------

void Compiler::declareClasses() {
    // Superclasses first, whatever the order in the text.
    std::vector<const ast::ClassDeclaration*> waiting;
    for (const ast::ClassDeclaration& source : source_.classes) waiting.push_back(&source);
    std::vector<std::pair<const ast::ClassDeclaration*, Class*>> defined;
    while (!waiting.empty()) {
        std::size_t before = waiting.size();
        for (auto at = waiting.begin(); at != waiting.end();) {
            const ast::ClassDeclaration& source = **at;
            Class* superclass =
                source.superclass.name.empty() ? classes().root() : classes().find(source.superclass.name);
            if (!superclass) {
                ++at;
                continue;
            }
            at = waiting.erase(at);
            if (!nameIsFree(source.name, source.position)) continue;
            Class* cls = classes().named(source.name);
            std::size_t words = source.properties.size() + source.events.size();
            classes().define(*cls, Origin::Program, superclass, std::int32_t(words * sizeof(Bits)));
            cls->name = source.name;
            cls->isInterface = source.kind == ast::ClassKind::Interface;
            if (source.kind == ast::ClassKind::Module) modules_.push_back(cls);
            if (!source.outer.empty()) classes().alias(source.outer + "." + source.name, cls->type);
            defined.emplace_back(&source, cls);
        }
        if (waiting.size() == before) {
            for (const ast::ClassDeclaration* source : waiting)
                errors_.emplace_back(source->superclass.position,
                                     "there is no class '" + source->superclass.name + "' to inherit from");
            break;
        }
    }
    auto each = [&](auto body) {
        for (auto& [source, cls] : defined) try {
                body(*source, *cls);
            } catch (const SourceError& error) {
                errors_.push_back(error);
            }
    };
    for (const ast::Delegate& source : source_.delegates) try {
            defineDelegate(source);
        } catch (const SourceError& error) {
            errors_.push_back(error);
        }
    each([&](const ast::ClassDeclaration& source, Class& cls) {
        for (const ast::TypeName& name : source.interfaces) {
            const Type* type = resolveType(name);
            if (type->kind != Kind::Object || !type->cls->isInterface)
                throw SourceError(name.position, "expected an interface, found " + type->name);
            cls.interfaces.push_back(type->cls);
        }
    });
    each([&](const ast::ClassDeclaration& source, Class& cls) { declareMembers(source, cls); });
    each([&](const ast::ClassDeclaration& source, Class& cls) { declareMethods(source, cls); });
    each([&](const ast::ClassDeclaration& source, Class& cls) { checkInterfaces(source, cls); });
    owner_ = nullptr;
}

void Compiler::declareMembers(const ast::ClassDeclaration& source, Class& cls) {
    auto guarded = [&](const std::string& name, auto body) {
        try {
            body();
        } catch (const SourceError& error) {
            spoilt_.insert(folded(name));
            errors_.push_back(error);
        }
    };
    owner_ = &cls; // its constants and shared properties have names
    hasSelf_ = false;
    for (const ast::Variable& v : source.constants)
        guarded(v.name, [&] {
            Local constant = constantOf(v);
            cls.constants.push_back({v.name, v.name, *constant.constant});
        });
    std::vector<Field>& fields = fields_[&cls];
    std::vector<std::pair<Field, Code>> initials;
    for (const ast::Variable& v : source.properties)
        guarded(v.name, [&] {
            if (findField(&cls, v.name) || shared_[&cls].contains(folded(v.name)))
                throw SourceError(v.position, "there is already a property '" + v.name + "'");
            if (v.shared) return declareShared(v, cls);
            Field field{v.name, resolveType(v.type),
                        cls.dataOffset + std::int32_t(fields.size() * sizeof(Bits))};
            if (v.length) {
                if (source.kind != ast::ClassKind::Structure || field.type->kind != Kind::String)
                    throw SourceError(v.length->position, "only a Structure's String has a fixed length");
                Operand length = valueAs(*v.length, simpleType(Kind::Int32), "the length");
                if (!length.constant || length.constant->bits.i32 < 0)
                    throw SourceError(v.length->position, "expected a constant length");
                field.length = length.constant->bits.i32;
            }
            fields.push_back(field);
            for (const ast::ExprPtr& e : v.bounds)
                if (!valueAs(*e, simpleType(Kind::Int32), "the upper bound").constant)
                    throw SourceError(e->position, "expected a constant upper bound");
            Code initial = v.initial ? valueAs(*v.initial, field.type, "'" + v.name + "'").code
                                     : emptyValue(v, field.type);
            if (initial) initials.emplace_back(field, std::move(initial));
        });
    std::int32_t handlers = cls.dataOffset + std::int32_t(source.properties.size() * sizeof(Bits));
    for (std::size_t i = 0; i < source.events.size(); ++i)
        guarded(source.events[i].name,
                [&] { defineEvent(source.events[i], cls, handlers + std::int32_t(i * sizeof(Bits))); });
    cls.initialize = [initials = std::move(initials), slots = slotCount_,
                      program = &program_](REALobject self) {
        Program::Statement statement(*program);
        std::vector<Bits> temporaries(std::size_t(slots) + 1);
        Frame frame{temporaries.data(), self, {}, 0};
        for (auto& [field, code] : initials) {
            Bits bits = code(frame);
            dataAt<Bits>(self, field.offset) = bits;
        }
    };
    cls.finalize = [fields, events = events_[&cls]](REALobject self) {
        for (const Field& field : fields)
            release(field.type, std::exchange(dataAt<Bits>(self, field.offset), Bits()));
        for (const Event& event : events)
            heap().release(std::exchange(dataAt<Bits>(self, event.handler), Bits()).object);
    };
    if (source.kind == ast::ClassKind::Structure) guarded(source.name, [&] { defineStructure(source, cls); });
}

void Compiler::declareMethods(const ast::ClassDeclaration& source, Class& cls) {
    for (const ast::Routine& method : source.methods) try {
            declareRoutine(method, &cls);
        } catch (const SourceError& error) {
            spoilt_.insert(folded(method.signature.name));
            errors_.push_back(error);
        }
}

// ---- routines --------------------------------------------------------------------------------------------

void Compiler::declareRoutine(const ast::Routine& source, Class* owner) {
    for (const ast::Parameter& p : source.signature.parameters) resolveType(p.type);
    if (source.signature.result) resolveType(*source.signature.result);
    auto method = std::make_unique<Method>();
    method->signature = classes().resolve(source.signature);
    method->owner = owner;
    method->shared = !owner || source.shared;
    method->origin = Origin::Program;
    const std::vector<const Method*> same =
        owner ? (method->shared ? owner->sharedMethodsNamed(source.signature.name)
                                : owner->methodsNamed(source.signature.name))
              : classes().functionsNamed(source.signature.name);
    for (const Method* other : same) {
        if (other->owner != owner ||
            other->signature.parameters.size() != method->signature.parameters.size())
            continue;
        bool equal = true;
        for (std::size_t i = 0; i < method->signature.parameters.size(); ++i)
            equal &= other->signature.parameters[i].type == method->signature.parameters[i].type;
        if (equal)
            throw SourceError(source.signature.position,
                              "there is already a '" + source.signature.name + "' with these parameters");
    }
    if (owner)
        if (const Event* event = findEvent(owner->superclass, source.signature.name)) {
            Signature expected = event->raise->signature;
            expected.name = method->signature.name;
            if (!sameSignature(expected, method->signature))
                throw SourceError(source.signature.position, method->fullName() + " handles the event " +
                                                                 event->raise->signature.text() +
                                                                 "; expected its parameters and result");
        }
    // Where a class of the framework has an event and a method of one name, this handles the event.
    for (const Class* c = owner ? owner->superclass : nullptr; c; c = c->superclass)
        if (c->origin == Origin::Framework && !c->methodsNamed(source.signature.name).empty())
            for (const std::string& event : c->events)
                if (sameName(event, source.signature.name)) method->signature.name = "event " + event;
    program_.routines.emplace_back();
    Routine& routine = program_.routines.back();
    routine.method = method.get();
    routine.owner = owner;
    for (const Parameter& p : method->signature.parameters) {
        routine.parameters.push_back(p.type);
        routine.byRef.push_back(p.byRef);
    }
    method->routine = &routine;
    bodies_.push_back({&source, &routine});
    if (!owner)
        classes().addFunction(std::move(method));
    else
        (method->shared ? owner->sharedMethods : owner->methods).push_back(std::move(method));
}

void Compiler::addGlobal(const std::string& name, Position position, const Local& local) {
    auto [entry, fresh] = globals_.try_emplace(folded(name), local);
    if (!fresh) errors_.emplace_back(position, "there is already a variable '" + name + "'");
}

void Compiler::addGlobalVariable(const std::string& name, Position position, const Type* type,
                                 bool declaredYet) {
    program_.globals.push_back({name, type, Bits()});
    Local local;
    local.type = type;
    local.address = &program_.globals.back().bits;
    local.declaredYet = declaredYet;
    addGlobal(name, position, local);
}

// The target's, and those of the program's main level: classes may use them.
void Compiler::declareGlobalConstants() {
    addGlobalVariable("Args", {}, classes().arrayOf(simpleType(Kind::String)), true);
    for (const auto& [name, value] : targetConstants()) {
        Literal constant{simpleType(Kind::Boolean), Bits(), {}};
        if (const double* number = std::get_if<double>(&value)) {
            constant.type = simpleType(Kind::Double);
            constant.bits = Bits::of(*number);
        } else {
            constant.bits = Bits::of(std::get<bool>(value));
        }
        Local local;
        local.type = constant.type;
        local.constant = constant;
        globals_.emplace(name, local);
    }
    for (const ast::StatementPtr& s : source_.statements) {
        if (s->kind != ast::StatementKind::Const) continue;
        const ast::Variable& v = s->variables[0];
        try {
            addGlobal(v.name, v.position, constantOf(v));
        } catch (const SourceError& error) {
            spoilt_.insert(folded(v.name));
            errors_.push_back(error);
        }
    }
}

void Compiler::declareGlobals() {
    for (const ast::StatementPtr& s : source_.statements)
        for (const ast::Variable& v : s->variables) try {
                if (s->kind == ast::StatementKind::Dim)
                    addGlobalVariable(v.name, v.position, resolveType(v.type), false);
            } catch (const SourceError& error) {
                spoilt_.insert(folded(v.name));
                errors_.push_back(error);
            }
}

void Compiler::compileBody(const ast::Routine& source, Routine& routine) {
    routine_ = &routine;
    owner_ = routine.owner;
    hasSelf_ = routine.owner && !routine.method->shared;
    slotCount_ = 0;
    scopes_.clear();
    scopes_.emplace_back();
    for (std::size_t i = 0; i < source.signature.parameters.size(); ++i)
        declareLocal(source.signature.parameters[i].name, source.signature.parameters[i].position,
                     routine.parameters[i]);
    scopes_.back().counted.clear(); // the call itself releases the parameters
    if (owner_ && owner_->isInterface) return;
    routine.body = block(source.body);
    routine.slotCount = slotCount_;
    scopes_.clear();
}

void Compiler::compileBodies() {
    for (const PendingBody& body : bodies_) try {
            compileBody(*body.source, *body.routine);
        } catch (const SourceError& error) {
            errors_.push_back(error);
        }
    routine_ = &program_.main;
    owner_ = nullptr;
    hasSelf_ = false;
    slotCount_ = 0;
    program_.main.body = block(source_.statements);
    program_.main.slotCount = slotCount_;
    program_.prepare.body = [actions = std::move(preparations_)](Frame& f) {
        for (const Action& action : actions) action(f);
        return Flow::Next;
    };
}

void Compiler::compile() {
    routine_ = &program_.main;
    declareTypes();
    declareGlobalConstants();
    declareClasses();
    program_.prepare.slotCount = slotCount_;
    for (const ast::Routine& routine : source_.routines) try {
            declareRoutine(routine, nullptr);
        } catch (const SourceError& error) {
            spoilt_.insert(folded(routine.signature.name));
            errors_.push_back(error);
        }
    declareGlobals();
    compileBodies();
    if (errors_.empty()) return;
    std::erase_if(errors_, [](const SourceError& error) { return error.consequence; });
    std::stable_sort(errors_.begin(), errors_.end(), [](const SourceError& a, const SourceError& b) {
        auto order = [](const Position& p) { return std::tuple(p.file, p.line, p.column); };
        return order(a.position) < order(b.position);
    });
    // Some declarations are looked at twice.
    std::vector<SourceError> told;
    for (const SourceError& error : errors_) {
        bool again = std::any_of(told.begin(), told.end(), [&](const SourceError& other) {
            bool samePlace = other.position.file == error.position.file &&
                             other.position.line == error.position.line &&
                             other.position.column == error.position.column;
            return std::strcmp(other.what(), error.what()) == 0 && (error.unknownName || samePlace);
        });
        if (!again) told.push_back(error);
    }
    throw SourceErrors{std::move(told), program_.files};
}

std::unique_ptr<Program> compileProgram(const std::string& fileName, std::string_view source) {
    auto program = std::make_unique<Program>(fileName);
    Surroundings surroundings;
    surroundings.constants = targetConstants();
    surroundings.files = program->files;
    surroundings.read = [](const std::string& path) -> std::optional<std::string> {
        std::ifstream file(path, std::ios::binary);
        std::stringstream text;
        if (!file || !(text << file.rdbuf())) return std::nullopt;
        return text.str();
    };
    try {
        ast::Program parsed = parseProgram(source, surroundings);
        program->files = surroundings.files;
        Compiler(*program, parsed).compile();
    } catch (const SourceError& error) {
        throw SourceErrors{{error}, surroundings.files};
    }
    return program;
}

} // namespace studio
