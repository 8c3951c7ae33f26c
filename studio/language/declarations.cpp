// Classes, routines and globals of a program, and the names in scope.
#include "compiler.h"
#include "runtime/arrays.h"
#include "runtime/references.h"
#include "syntax/ast.h"
#include "syntax/names.h"
#include "syntax/parser.h"

#include <algorithm>
#include <cstring>

namespace studio {

// ---- names -----------------------------------------------------------------------------------------------

Local* Compiler::findVariable(std::string_view name) {
    std::string key = folded(name);
    for (auto scope = scopes_.rbegin(); scope != scopes_.rend(); ++scope)
        if (auto found = scope->names.find(key); found != scope->names.end()) return &found->second;
    // A class's own members come before globals.
    if (hasSelf_ && (findField(owner_, name) || owner_->property(name))) return nullptr;
    auto found = globals_.find(key);
    if (found == globals_.end()) return nullptr;
    if (!found->second.declaredYet && routine_ == &program_.main) return nullptr;
    return &found->second;
}

const Compiler::Field* Compiler::findField(const Class* cls, std::string_view name) const {
    for (const Class* c = cls; c; c = c->superclass)
        if (auto found = fields_.find(c); found != fields_.end())
            for (const Field& field : found->second)
                if (sameName(field.name, name)) return &field;
    return nullptr;
}

Class* Compiler::findClass(const ast::Expr& e) const {
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
    for (const Global& global : program_.globals) result.push_back(global.name);
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
    }
    if (type->kind == Kind::String || type->kind == Kind::Color)
        for (auto& function : classes().functions())
            if (!function->signature.parameters.empty() && function->signature.parameters[0].type == type)
                result.push_back(function->signature.name);
    return result;
}

const Type* Compiler::resolveType(const ast::TypeName& name) {
    const Type* type = classes().typeNamed(name);
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
            Class* cls = classes().named(source.name);
            if (cls->isDefined() || simpleTypeNamed(source.name)) {
                errors_.emplace_back(source.position, "there is already a class '" + source.name + "'");
                continue;
            }
            std::int32_t size = std::int32_t(source.properties.size() * sizeof(Bits));
            classes().define(*cls, Origin::Program, superclass, size);
            cls->name = source.name;
            defined.emplace_back(&source, cls);
        }
        if (waiting.size() == before) {
            for (const ast::ClassDeclaration* source : waiting)
                errors_.emplace_back(source->superclass.position,
                                     "there is no class '" + source->superclass.name + "' to inherit from");
            break;
        }
    }
    for (auto& [source, cls] : defined) declareMembers(*source, *cls);
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
    std::vector<Field>& fields = fields_[&cls];
    std::vector<std::pair<Field, Code>> initials;
    for (const ast::Variable& v : source.properties)
        guarded(v.name, [&] {
            Field field{v.name, resolveType(v.type),
                        cls.dataOffset + std::int32_t(fields.size() * sizeof(Bits))};
            if (findField(&cls, v.name))
                throw SourceError(v.position, "there is already a property '" + v.name + "'");
            fields.push_back(field);
            if (v.initial) {
                initials.emplace_back(field, valueAs(*v.initial, field.type, "'" + v.name + "'").code);
            } else if (field.type->kind == Kind::Array) {
                std::int32_t count = 0;
                if (v.bound) {
                    Operand bound = valueAs(*v.bound, simpleType(Kind::Int32), "the upper bound");
                    if (!bound.constant) throw SourceError(v.position, "expected a literal upper bound");
                    count = bound.constant->bits.i32 + 1;
                }
                initials.emplace_back(field, [element = field.type->element, count](Frame&) {
                    return Bits::of(newArray(element, count));
                });
            }
        });
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
    cls.finalize = [fields](REALobject self) {
        for (const Field& field : fields)
            release(field.type, std::exchange(dataAt<Bits>(self, field.offset), Bits()));
    };
    for (const ast::Variable& v : source.constants)
        guarded(v.name, [&] {
            Local constant = constantOf(v);
            cls.constants.push_back({v.name, v.name, *constant.constant});
        });
    for (const ast::Routine& method : source.methods)
        guarded(method.signature.name, [&] { declareRoutine(method, &cls); });
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

void Compiler::declareGlobals() {
    auto add = [&](const std::string& name, Position position, const Local& local) {
        if (!globals_.try_emplace(folded(name), local).second)
            errors_.emplace_back(position, "there is already a variable '" + name + "'");
    };
    auto addVariable = [&](const std::string& name, Position position, const Type* type, bool declaredYet) {
        program_.globals.push_back({name, type, Bits()});
        Local local;
        local.type = type;
        local.address = &program_.globals.back().bits;
        local.declaredYet = declaredYet;
        add(name, position, local);
    };
    addVariable("Args", {}, classes().arrayOf(simpleType(Kind::String)), true);
    for (const ast::StatementPtr& s : source_.statements)
        for (const ast::Variable& v : s->variables) try {
                if (s->kind == ast::StatementKind::Dim)
                    addVariable(v.name, v.position, resolveType(v.type), false);
                if (s->kind == ast::StatementKind::Const) add(v.name, v.position, constantOf(v));
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
}

void Compiler::compile() {
    routine_ = &program_.main;
    declareClasses();
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
        return std::pair(a.position.line, a.position.column) < std::pair(b.position.line, b.position.column);
    });
    // Some declarations are looked at twice.
    std::vector<SourceError> told;
    for (const SourceError& error : errors_) {
        bool again = std::any_of(told.begin(), told.end(), [&](const SourceError& other) {
            bool samePlace =
                other.position.line == error.position.line && other.position.column == error.position.column;
            return std::strcmp(other.what(), error.what()) == 0 && (error.unknownName || samePlace);
        });
        if (!again) told.push_back(error);
    }
    throw SourceErrors{std::move(told)};
}

std::unique_ptr<Program> compileProgram(const std::string& fileName, std::string_view source) {
    auto program = std::make_unique<Program>(fileName);
    try {
        ast::Program parsed = parseProgram(source);
        Compiler(*program, parsed).compile();
    } catch (const SourceError& error) {
        throw SourceErrors{{error}};
    }
    return program;
}

} // namespace studio
